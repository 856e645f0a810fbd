#include "LoopbackWebServer.h"

#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/core/tcp_stream.hpp>
#include <boost/beast/http/read.hpp>
#include <boost/beast/http/write.hpp>
#include <memory>
#include <stdexcept>

namespace {

namespace asio = boost::asio;
namespace beast = boost::beast;
namespace http = boost::beast::http;
using tcp = asio::ip::tcp;
using boost::system::error_code;

constexpr std::chrono::seconds kIdleTimeout{60};

// One connection. Its pending handlers keep it alive.
class CWebSession : public std::enable_shared_from_this<CWebSession> {
public:
    CWebSession(tcp::socket socket, const WebHandler& handler)
        : m_stream(std::move(socket)), m_handler(handler) {}

    void ReadNext() {
        m_request = {};
        m_stream.expires_after(kIdleTimeout);
        http::async_read(m_stream, m_buffer, m_request,
                         [self = shared_from_this()](error_code error, std::size_t) {
                             if (!error) {
                                 self->answer();
                             }
                         });
    }

private:
    void answer() {
        m_response = m_handler(m_request);
        m_response.version(m_request.version());
        m_response.keep_alive(m_request.keep_alive());
        m_response.prepare_payload();
        m_stream.expires_after(kIdleTimeout);
        http::async_write(m_stream, m_response,
                          [self = shared_from_this()](error_code error, std::size_t) {
                              if (!error && self->m_response.keep_alive()) {
                                  self->ReadNext();
                              }
                          });
    }

    beast::tcp_stream m_stream;
    beast::flat_buffer m_buffer;
    WebRequest m_request;
    WebResponse m_response;
    const WebHandler& m_handler;
};

}  // namespace

CLoopbackWebServer::CLoopbackWebServer(WebHandler handler)
    : m_handler(std::move(handler)), m_acceptor(m_io) {}

CLoopbackWebServer::~CLoopbackWebServer() {
    m_io.stop();
    if (m_thread.joinable()) {
        m_thread.join();
    }
}

bool CLoopbackWebServer::Start(std::string& reason) {
    try {
        m_acceptor = tcp::acceptor(m_io, tcp::endpoint(asio::ip::address_v4::loopback(), 0));
        m_port = m_acceptor.local_endpoint().port();
        acceptNext();
        m_thread = std::thread([this] { m_io.run(); });
        return true;
    } catch (const std::runtime_error& error) {  // the base of both libraries' system errors
        reason = error.what();
    }
    return false;
}

void CLoopbackWebServer::acceptNext() {
    m_acceptor.async_accept([this](error_code error, tcp::socket socket) {
        if (error == asio::error::operation_aborted) {
            return;
        }
        if (!error) {
            std::make_shared<CWebSession>(std::move(socket), m_handler)->ReadNext();
        }
        acceptNext();
    });
}
