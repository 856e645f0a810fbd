#include "TimedPages.h"

#include <stdexcept>

#include "TestDeadline.h"

namespace {

constexpr char kPage[] = "/page";
constexpr char kReportingPage[] = "/reporting";
constexpr char kCookiePage[] = "/cookie";
constexpr char kLoaded[] = "/loaded";

constexpr char kBody[] = "hello";
constexpr char kReportingBody[] =
    "<script>addEventListener('load', () => fetch('/loaded' + location.search));</script>hello";

// From the query on. Each page has its own query.
std::string QueryOf(const std::string& url) {
    return url.substr(url.find('?'));
}

}  // namespace

TimedPages::TimedPages() {
    m_server.Handle(kPage, [this](HttpExchange& exchange) {
        Note(QueryOf(exchange.Request().target));
        exchange.Respond({200, kBody});
    });
    m_server.Handle(kReportingPage, [this](HttpExchange& exchange) {
        Note(QueryOf(exchange.Request().target));
        exchange.Respond({200, kReportingBody});
    });
    m_server.Handle(kCookiePage, [this](HttpExchange& exchange) {
        const std::string query = QueryOf(exchange.Request().target);
        Note(query);
        exchange.Respond({200, kBody, "text/html", {{"Set-Cookie", "session=" + query.substr(1)}}});
    });
    m_server.Handle(kLoaded, [this](HttpExchange& exchange) {
        Note(exchange.Request().target);
        exchange.Respond({});
    });
}

std::string TimedPages::NewPage() {
    return m_server.Url(std::string(kPage) + "?" + std::to_string(++m_pages));
}

std::string TimedPages::NewReportingPage() {
    return m_server.Url(std::string(kReportingPage) + "?" + std::to_string(++m_pages));
}

std::string TimedPages::NewPageWithCookie() {
    return m_server.Url(std::string(kCookiePage) + "?" + std::to_string(++m_pages));
}

Moment TimedPages::AwaitRequest(const std::string& url) {
    return Await(QueryOf(url));
}

Moment TimedPages::AwaitLoad(const std::string& url) {
    return Await(kLoaded + QueryOf(url));
}

void TimedPages::Note(const std::string& target) {
    const Moment now = std::chrono::steady_clock::now();
    const std::lock_guard<std::mutex> guard(m_mutex);
    m_moments.emplace(target, now);
    m_changed.notify_all();
}

Moment TimedPages::Await(const std::string& target) {
    std::unique_lock<std::mutex> guard(m_mutex);
    if (!m_changed.wait_for(guard, kTestDeadline, [&] { return m_moments.count(target) != 0; })) {
        throw std::runtime_error("no request for " + target);
    }
    return m_moments.at(target);
}
