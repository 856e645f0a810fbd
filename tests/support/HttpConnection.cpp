#include "HttpConnection.h"

#include <sys/socket.h>

#include <array>

HttpConnection::HttpConnection(CUniqueFd socket, SSL_CTX* context)
    : m_socket(std::move(socket)),
      m_tls(context != nullptr ? SSL_new(context) : nullptr, SSL_free) {
    if (m_tls) {
        SSL_set_fd(m_tls.get(), m_socket.Get());
    }
}

HttpConnection::~HttpConnection() = default;

bool HttpConnection::Accept() {
    return !m_tls || SSL_accept(m_tls.get()) == 1;
}

std::string HttpConnection::ClientName() const {
    const std::unique_ptr<X509, void (*)(X509*)> certificate(
        m_tls ? SSL_get1_peer_certificate(m_tls.get()) : nullptr, X509_free);
    std::array<char, 256> name{};
    if (certificate) {
        X509_NAME_get_text_by_NID(X509_get_subject_name(certificate.get()), NID_commonName,
                                  name.data(), static_cast<int>(name.size()));
    }
    return name.data();
}

bool HttpConnection::AskForClient() {
    // Whoever signed it.
    SSL_set_verify(m_tls.get(), SSL_VERIFY_PEER, [](int, X509_STORE_CTX*) { return 1; });
    // Reading then ends behind each piece of the handshake.
    SSL_clear_mode(m_tls.get(), SSL_MODE_AUTO_RETRY);
    bool isGoingOn = SSL_renegotiate(m_tls.get()) == 1 && SSL_do_handshake(m_tls.get()) == 1;
    while (isGoingOn && SSL_renegotiate_pending(m_tls.get()) != 0) {
        char byte = 0;
        isGoingOn =
            SSL_get_error(m_tls.get(), SSL_peek(m_tls.get(), &byte, 1)) == SSL_ERROR_WANT_READ;
    }
    return isGoingOn;
}

std::string HttpConnection::Read() {
    std::array<char, 4096> buffer{};
    const ssize_t length =
        m_tls ? SSL_read(m_tls.get(), buffer.data(), static_cast<int>(buffer.size()))
              : recv(m_socket.Get(), buffer.data(), buffer.size(), 0);
    return length > 0 ? std::string(buffer.data(), static_cast<std::size_t>(length)) : "";
}

bool HttpConnection::Write(const std::string& bytes) {
    std::size_t sent = 0;
    while (sent < bytes.size()) {
        const char* const rest = bytes.data() + sent;
        const std::size_t left = bytes.size() - sent;
        const ssize_t length = m_tls ? SSL_write(m_tls.get(), rest, static_cast<int>(left))
                                     : send(m_socket.Get(), rest, left, MSG_NOSIGNAL);
        if (length <= 0) {
            return false;
        }
        sent += static_cast<std::size_t>(length);
    }
    return true;
}

void HttpConnection::Finish() {
    if (m_reset) {
        return;
    }
    if (m_tls) {
        SSL_shutdown(m_tls.get());
    }
    shutdown(m_socket.Get(), SHUT_WR);
    // Closing with unread bytes would reset the connection and take the answer with it.
    std::array<char, 4096> ignored{};
    while (recv(m_socket.Get(), ignored.data(), ignored.size(), 0) > 0) {
    }
}

void HttpConnection::Cut() {
    shutdown(m_socket.Get(), SHUT_RDWR);
}

void HttpConnection::Reset() {
    const linger atOnce{1, 0};
    setsockopt(m_socket.Get(), SOL_SOCKET, SO_LINGER, &atOnce, sizeof atOnce);
    m_reset = true;
}

void HttpConnection::Interrupt() const {
    shutdown(m_socket.Get(), SHUT_RDWR);
}
