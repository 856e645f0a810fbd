#pragma once

#include <chrono>
#include <condition_variable>
#include <map>
#include <mutex>
#include <string>

#include "HttpServer.h"

using Moment = std::chrono::steady_clock::time_point;

/// A web server that records when each of its pages was requested and when its load event came. The
/// page reports its load event by a request. Any thread.
class TimedPages {
public:
    TimedPages();

    /// The address of a page that nobody has requested yet.
    [[nodiscard]] std::string NewPage();
    /// The same for a page that sets the cookie "session".
    [[nodiscard]] std::string NewPageWithCookie();

    /// When the page at that address was requested. Throws if that never happens.
    [[nodiscard]] Moment AwaitRequest(const std::string& url);
    /// When its load event came.
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
