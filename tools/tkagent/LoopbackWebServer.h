#pragma once

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/beast/http/message.hpp>
#include <boost/beast/http/string_body.hpp>
#include <cstdint>
#include <functional>
#include <string>
#include <thread>

using WebRequest = boost::beast::http::request<boost::beast::http::string_body>;
using WebResponse = boost::beast::http::response<boost::beast::http::string_body>;

/// Answers one request. Runs on the server's thread, for one request at a time.
using WebHandler = std::function<WebResponse(const WebRequest&)>;

/// A small HTTP server on a free port of 127.0.0.1, with one thread of its own.
class CLoopbackWebServer {
public:
    explicit CLoopbackWebServer(WebHandler handler);
    /// Stops serving; open connections are closed, and the thread is joined.
    ~CLoopbackWebServer();
    CLoopbackWebServer(const CLoopbackWebServer&) = delete;
    CLoopbackWebServer& operator=(const CLoopbackWebServer&) = delete;

    /// Starts to serve, once per object. On failure the reason says why.
    [[nodiscard]] bool Start(std::string& reason);

    /// The port; 0 before the start.
    [[nodiscard]] std::uint16_t Port() const { return m_port; }

private:
    void acceptNext();

    WebHandler m_handler;
    boost::asio::io_context m_io;
    boost::asio::ip::tcp::acceptor m_acceptor;
    std::uint16_t m_port = 0;
    std::thread m_thread;
};
