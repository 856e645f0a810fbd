#pragma once

#include <condition_variable>
#include <cstdint>
#include <functional>
#include <list>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "HttpMessage.h"
#include "TlsIdentity.h"
#include "UniqueFd.h"

class HttpConnection;
class HttpServer;
struct ssl_ctx_st;

/// One request that waits for its answer, on a thread of its own.
class HttpExchange {
public:
    HttpExchange(HttpServer& server, HttpConnection& connection, HttpRequest request)
        : m_server(server), m_connection(connection), m_request(std::move(request)) {}

    [[nodiscard]] const HttpRequest& Request() const { return m_request; }

    /// Sends a whole answer.
    void Respond(const HttpResponse& response);
    /// Sends bytes as they are. The connection ends properly after the handler has returned.
    void SendRaw(const std::string& bytes);
    /// Asks in the middle of the connection, of TLS 1.2 at most, for the client's certificate.
    /// False when the client ends the connection over that.
    [[nodiscard]] bool AskForClient();
    /// Blocks until the server's Release() of this request's path, or until the server ends.
    void WaitForRelease();
    /// Ends the connection without notice.
    void Cut();
    /// Ends it as a crashed or overloaded machine does, once the handler has returned.
    void Reset();

private:
    HttpServer& m_server;
    HttpConnection& m_connection;
    HttpRequest m_request;
};

using HttpHandler = std::function<void(HttpExchange&)>;

/// A web server on a free loopback port, as long as the object lives. It answers each request on a
/// thread of its own and then closes the connection. A path without a handler gets 404. The test
/// compares what was received and what was not. Any thread.
class HttpServer {
public:
    /// Throws std::runtime_error if it cannot get a port or load the certificate.
    explicit HttpServer(const TlsIdentity& identity = {});
    ~HttpServer();
    HttpServer(const HttpServer&) = delete;
    HttpServer& operator=(const HttpServer&) = delete;

    [[nodiscard]] std::uint16_t Port() const { return m_port; }
    /// The address of a target, by number or by a name of this machine.
    [[nodiscard]] std::string Url(const std::string& target,
                                  const std::string& host = "127.0.0.1") const;

    /// From now on the handler answers this path, whatever the query.
    void Handle(const std::string& path, HttpHandler handler);
    void Serve(const std::string& path, const HttpResponse& response);
    /// A page with this body.
    void ServePage(const std::string& path, const std::string& body);
    void Redirect(const std::string& path, const std::string& location, unsigned status = 302);
    /// Answers only after Release(), with this response.
    void ServeOnRelease(const std::string& path, const HttpResponse& response);
    /// Sends the head and the first half of the body at once, and the rest after Release().
    void ServeHalfUntilRelease(const std::string& path, const HttpResponse& response);

    /// Lets the requests for this path go on, those that wait now and those that come later.
    void Release(const std::string& path);

    /// Every request so far, in the order of arrival.
    [[nodiscard]] std::vector<HttpRequest> Requests() const;
    /// The same as "GET /target".
    [[nodiscard]] std::vector<std::string> RequestLines() const;
    /// How many requests for this path have come.
    [[nodiscard]] std::size_t CountRequests(const std::string& path) const;
    /// Blocks until this many requests for the path have come. Returns false after the test
    /// deadline.
    [[nodiscard]] bool WaitForRequest(const std::string& path, std::size_t count = 1) const;

private:
    friend class HttpExchange;

    /// One connection, and the thread that serves it.
    struct Conversation {
        std::unique_ptr<HttpConnection> connection;
        std::thread thread;
    };

    void AcceptConnections();
    void Start(CUniqueFd socket);
    void Answer(HttpConnection& connection);
    void End(std::list<Conversation>::iterator conversation);
    void JoinEnded();
    HttpHandler Record(const HttpRequest& request);
    void WaitForRelease(const std::string& path);
    [[nodiscard]] std::size_t CountLocked(const std::string& path) const;

    std::shared_ptr<ssl_ctx_st> m_context;
    CUniqueFd m_listener;
    std::uint16_t m_port;

    mutable std::mutex m_mutex;
    mutable std::condition_variable m_changed;
    bool m_stopping = false;
    std::map<std::string, HttpHandler> m_handlers;
    std::set<std::string> m_released;
    std::vector<HttpRequest> m_requests;
    std::list<Conversation> m_open;
    std::list<Conversation> m_ended;
    std::thread m_accepting;
};
