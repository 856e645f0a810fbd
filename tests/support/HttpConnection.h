#pragma once

#include <openssl/ssl.h>

#include <memory>
#include <string>

#include "UniqueFd.h"

/// One client's connection, plain or TLS. Blocking. Used by one thread, except for Interrupt().
class HttpConnection {
public:
    /// No context means no TLS.
    HttpConnection(CUniqueFd socket, SSL_CTX* context);
    ~HttpConnection();
    HttpConnection(const HttpConnection&) = delete;
    HttpConnection& operator=(const HttpConnection&) = delete;

    /// False when the client gave up the handshake.
    [[nodiscard]] bool Accept();
    /// The common name in the client's certificate; empty if it has shown none.
    [[nodiscard]] std::string ClientName() const;
    /// Asks for that certificate in a second handshake. False when the client refuses.
    [[nodiscard]] bool AskForClient();
    /// Returns what has come, or an empty text at the end.
    [[nodiscard]] std::string Read();
    /// False when the client is gone.
    bool Write(const std::string& bytes);

    /// Ends our direction as HTTP requires it, and waits for the client to end its own.
    void Finish();
    /// Ends both directions, in the middle of whatever was sent.
    void Cut();
    /// Makes the client see "connection reset by peer" when this object is destroyed.
    void Reset();

    /// Wakes the thread that uses the connection; that thread then finds the connection ended. Any
    /// thread, as long as the connection lives.
    void Interrupt() const;

private:
    CUniqueFd m_socket;
    std::unique_ptr<SSL, void (*)(SSL*)> m_tls;
    bool m_reset = false;
};
