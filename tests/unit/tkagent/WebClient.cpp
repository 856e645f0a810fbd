#include "WebClient.h"

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/core/tcp_stream.hpp>
#include <boost/beast/http/read.hpp>
#include <boost/beast/http/write.hpp>

namespace asio = boost::asio;
namespace beast = boost::beast;
namespace http = boost::beast::http;

http::response<http::string_body> Ask(std::uint16_t port, http::verb method,
                                      const std::string& target, const std::string& body,
                                      const std::string& cookie) {
    asio::io_context io;
    beast::tcp_stream stream(io);
    stream.connect(asio::ip::tcp::endpoint(asio::ip::address_v4::loopback(), port));
    http::request<http::string_body> request(method, target, 11, body);
    request.set(http::field::host, "127.0.0.1");
    if (!cookie.empty()) {
        request.set(http::field::cookie, cookie);
    }
    request.prepare_payload();
    http::write(stream, request);
    beast::flat_buffer buffer;
    http::response<http::string_body> response;
    http::read(stream, buffer, response);
    return response;
}
