#include "HttpMessage.h"

#include <boost/asio/buffer.hpp>
#include <boost/beast/core/string.hpp>
#include <boost/beast/http/parser.hpp>
#include <boost/beast/http/status.hpp>
#include <boost/beast/http/string_body.hpp>

namespace http = boost::beast::http;

namespace {

// Older and newer versions of Boost have different classes for this, and convert neither alike.
std::string Copied(boost::beast::string_view text) {
    return {text.data(), text.size()};
}

}  // namespace

std::string HttpRequest::Header(const std::string& name) const {
    for (const auto& [key, value] : headers) {
        if (boost::beast::iequals(key, name)) {
            return value;
        }
    }
    return "";
}

std::string HttpRequest::Path() const {
    return target.substr(0, target.find('?'));
}

std::string HttpResponse::Head(std::size_t contentLength) const {
    const http::status known = http::int_to_status(status);
    std::string head =
        "HTTP/1.1 " + std::to_string(status) + " " + Copied(http::obsolete_reason(known)) + "\r\n";
    if (!contentType.empty()) {
        head += "Content-Type: " + contentType + "\r\n";
    }
    for (const auto& [name, value] : headers) {
        head += name;
        head += ": " + value + "\r\n";
    }
    return head + "Content-Length: " + std::to_string(contentLength) +
           "\r\nConnection: close\r\n\r\n";
}

class HttpRequestReader::Parser : public http::request_parser<http::string_body> {
public:
    // What the parser has not taken yet: it wants whole lines.
    std::string pending;
};

HttpRequestReader::HttpRequestReader() : m_parser(std::make_unique<Parser>()) {
    m_parser->eager(true);
}

HttpRequestReader::~HttpRequestReader() = default;

bool HttpRequestReader::Feed(const std::string& bytes) {
    m_parser->pending += bytes;
    boost::system::error_code error;
    const std::size_t taken = m_parser->put(boost::asio::buffer(m_parser->pending), error);
    m_parser->pending.erase(0, taken);
    return !error || error == http::error::need_more;
}

bool HttpRequestReader::IsDone() const {
    return m_parser->is_done();
}

HttpRequest HttpRequestReader::Take() const {
    const auto& message = m_parser->get();
    HttpRequest request;
    request.method = Copied(message.method_string());
    request.target = Copied(message.target());
    for (const auto& field : message) {
        request.headers.emplace_back(Copied(field.name_string()), Copied(field.value()));
    }
    request.body = message.body();
    return request;
}
