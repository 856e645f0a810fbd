#pragma once

#include <chrono>
#include <condition_variable>
#include <map>
#include <mutex>
#include <string>

#include "HttpServer.h"

using Moment = std::chrono::steady_clock::time_point;

/// A web server that notes when each of its pages was asked for, and when its load event came: the
/// page tells with a request of its own. Any thread.
class TimedPages {
public:
    TimedPages();

    /// The address of a page that nobody has asked for yet.
    [[nodiscard]] std::string NewPage();
    /// The same of one that sets the cookie "session".
    [[nodiscard]] std::string NewPageWithCookie();

    /// When the page at that address was asked for. Throws when that never happens.
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
