#pragma once

#include <chrono>
#include <condition_variable>
#include <map>
#include <mutex>
#include <string>

#include "HttpServer.h"

using Moment = std::chrono::steady_clock::time_point;

/// A web server that records when each of its pages was requested, and when the load event of a
/// reporting page came. Any thread.
class TimedPages {
public:
    TimedPages();

    /// The address of a page that nobody has requested yet.
    [[nodiscard]] std::string NewPage();
    /// The same for a page that reports its load event, by a request. Only for the last page of a
    /// process: if the next load interrupts this request, libsoup 3.6.5 now and then ends it
    /// twice, and the engine's network process dies.
    [[nodiscard]] std::string NewReportingPage();
    /// The same for a page that sets the cookie "session".
    [[nodiscard]] std::string NewPageWithCookie();

    /// When the page at that address was requested. Throws if that never happens.
    [[nodiscard]] Moment AwaitRequest(const std::string& url);
    /// When the load event of that reporting page came. Throws if it never does.
    [[nodiscard]] Moment AwaitLoad(const std::string& url);

private:
    void Note(const std::string& target);
    [[nodiscard]] Moment Await(const std::string& target);

    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::map<std::string, Moment> m_moments;
    int m_pages = 0;
    HttpServer m_server;
};
