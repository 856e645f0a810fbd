#include "HttpServer.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <openssl/ssl.h>
#include <pthread.h>
#include <sys/socket.h>

#include <algorithm>
#include <csignal>
#include <stdexcept>

#include "HttpConnection.h"
#include "TestDeadline.h"

namespace {

// A session that is taken up again would not ask.
void AskForClients(SSL_CTX* context, const TlsIdentity& identity) {
    const char* const authorities = identity.clientAuthorities.c_str();
    if (SSL_CTX_load_verify_locations(context, authorities, nullptr) != 1) {
        throw std::runtime_error("cannot use " + identity.clientAuthorities);
    }
    SSL_CTX_set_client_CA_list(context, SSL_load_client_CA_file(authorities));
    SSL_CTX_set_verify(
        context, SSL_VERIFY_PEER | (identity.needsClient ? SSL_VERIFY_FAIL_IF_NO_PEER_CERT : 0),
        nullptr);
    SSL_CTX_set_session_cache_mode(context, SSL_SESS_CACHE_OFF);
    SSL_CTX_set_options(context, SSL_OP_NO_TICKET);
    SSL_CTX_set_num_tickets(context, 0);
}

std::shared_ptr<SSL_CTX> MakeContext(const TlsIdentity& identity) {
    if (identity.certificate.empty()) {
        return nullptr;
    }
    std::shared_ptr<SSL_CTX> context(SSL_CTX_new(TLS_server_method()), SSL_CTX_free);
    if (SSL_CTX_use_certificate_chain_file(context.get(), identity.certificate.c_str()) != 1 ||
        SSL_CTX_use_PrivateKey_file(context.get(), identity.key.c_str(), SSL_FILETYPE_PEM) != 1) {
        throw std::runtime_error("cannot use certificate " + identity.certificate);
    }
    if (identity.version == TlsIdentity::Version::tls1_1) {
        SSL_CTX_set_max_proto_version(context.get(), TLS1_1_VERSION);
        // The library's own level has no cipher left for such a version.
        SSL_CTX_set_cipher_list(context.get(), "DEFAULT:@SECLEVEL=0");
    } else if (identity.version == TlsIdentity::Version::tls1_2) {
        SSL_CTX_set_max_proto_version(context.get(), TLS1_2_VERSION);
    }
    if (!identity.clientAuthorities.empty()) {
        AskForClients(context.get(), identity);
    }
    return context;
}

CUniqueFd Listen() {
    CUniqueFd listener(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (bind(listener.Get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
        listen(listener.Get(), SOMAXCONN) != 0) {
        throw std::runtime_error("cannot listen on loopback");
    }
    return listener;
}

std::uint16_t PortOf(const CUniqueFd& listener) {
    sockaddr_in address{};
    socklen_t size = sizeof address;
    getsockname(listener.Get(), reinterpret_cast<sockaddr*>(&address), &size);
    return ntohs(address.sin_port);
}

// The program's own signals are not for these threads, nor is SIGPIPE, which TLS writes raise.
void BlockSignals() {
    sigset_t all;
    sigfillset(&all);
    pthread_sigmask(SIG_BLOCK, &all, nullptr);
}

void AnswerNotFound(HttpExchange& exchange) {
    exchange.Respond({404, "not found", "text/plain"});
}

}  // namespace

void HttpExchange::Respond(const HttpResponse& response) {
    m_connection.Write(response.Head(response.body.size()) + response.body);
}

void HttpExchange::SendRaw(const std::string& bytes) {
    m_connection.Write(bytes);
}

bool HttpExchange::AskForClient() {
    const bool isDone = m_connection.AskForClient();
    m_request.client = m_connection.ClientName();
    return isDone;
}

void HttpExchange::WaitForRelease() {
    m_server.WaitForRelease(m_request.Path());
}

void HttpExchange::Cut() {
    m_connection.Cut();
}

void HttpExchange::Reset() {
    m_connection.Reset();
}

HttpServer::HttpServer(const TlsIdentity& identity)
    : m_context(MakeContext(identity)),
      m_listener(Listen()),
      m_port(PortOf(m_listener)),
      m_accepting([this] { AcceptConnections(); }) {}

HttpServer::~HttpServer() {
    std::unique_lock<std::mutex> guard(m_mutex);
    m_stopping = true;
    m_changed.notify_all();
    for (const Conversation& conversation : m_open) {
        conversation.connection->Interrupt();
    }
    m_changed.wait(guard, [this] { return m_open.empty(); });
    guard.unlock();
    shutdown(m_listener.Get(), SHUT_RDWR);
    m_accepting.join();
    JoinEnded();
}

std::string HttpServer::Url(const std::string& target, const std::string& host) const {
    return (m_context ? "https://" : "http://") + host + ":" + std::to_string(m_port) + target;
}

void HttpServer::Handle(const std::string& path, HttpHandler handler) {
    const std::lock_guard<std::mutex> guard(m_mutex);
    m_handlers[path] = std::move(handler);
}

void HttpServer::Serve(const std::string& path, const HttpResponse& response) {
    Handle(path, [response](HttpExchange& exchange) { exchange.Respond(response); });
}

void HttpServer::ServePage(const std::string& path, const std::string& body) {
    Serve(path, {200, "<!DOCTYPE html><html><body>" + body + "</body></html>"});
}

void HttpServer::Redirect(const std::string& path, const std::string& location, unsigned status) {
    Serve(path, {status, "", "", {{"Location", location}}});
}

void HttpServer::ServeOnRelease(const std::string& path, const HttpResponse& response) {
    Handle(path, [response](HttpExchange& exchange) {
        exchange.WaitForRelease();
        exchange.Respond(response);
    });
}

void HttpServer::ServeHalfUntilRelease(const std::string& path, const HttpResponse& response) {
    Handle(path, [response](HttpExchange& exchange) {
        const std::size_t half = response.body.size() / 2;
        exchange.SendRaw(response.Head(response.body.size()) + response.body.substr(0, half));
        exchange.WaitForRelease();
        exchange.SendRaw(response.body.substr(half));
    });
}

void HttpServer::Release(const std::string& path) {
    {
        const std::lock_guard<std::mutex> guard(m_mutex);
        m_released.insert(path);
    }
    m_changed.notify_all();
}

std::vector<HttpRequest> HttpServer::Requests() const {
    const std::lock_guard<std::mutex> guard(m_mutex);
    return m_requests;
}

std::vector<std::string> HttpServer::RequestLines() const {
    std::vector<std::string> lines;
    for (const HttpRequest& request : Requests()) {
        lines.push_back(request.method + " " + request.target);
    }
    return lines;
}

std::size_t HttpServer::CountRequests(const std::string& path) const {
    const std::lock_guard<std::mutex> guard(m_mutex);
    return CountLocked(path);
}

bool HttpServer::WaitForRequest(const std::string& path, std::size_t count) const {
    std::unique_lock<std::mutex> guard(m_mutex);
    return m_changed.wait_for(guard, kTestDeadline, [&] { return CountLocked(path) >= count; });
}

void HttpServer::AcceptConnections() {
    BlockSignals();
    for (;;) {
        CUniqueFd socket(accept4(m_listener.Get(), nullptr, nullptr, SOCK_CLOEXEC));
        JoinEnded();
        const std::lock_guard<std::mutex> guard(m_mutex);
        if (m_stopping) {
            return;
        }
        if (socket.Get() >= 0) {
            Start(std::move(socket));
        }
    }
}

// The caller holds the lock, so that the destructor either sees the connection or prevents it.
void HttpServer::Start(CUniqueFd socket) {
    const auto conversation = m_open.insert(m_open.end(), Conversation());
    conversation->connection = std::make_unique<HttpConnection>(std::move(socket), m_context.get());
    conversation->thread = std::thread([this, conversation] {
        Answer(*conversation->connection);
        End(conversation);
    });
}

void HttpServer::Answer(HttpConnection& connection) {
    if (!connection.Accept()) {
        return;
    }
    HttpRequestReader reader;
    while (!reader.IsDone()) {
        const std::string bytes = connection.Read();
        if (bytes.empty() || !reader.Feed(bytes)) {
            return;
        }
    }
    HttpRequest request = reader.Take();
    request.client = connection.ClientName();
    HttpExchange exchange(*this, connection, request);
    Record(request)(exchange);
    connection.Finish();
}

void HttpServer::End(std::list<Conversation>::iterator conversation) {
    const std::lock_guard<std::mutex> guard(m_mutex);
    conversation->connection.reset();
    m_ended.splice(m_ended.end(), m_open, conversation);
    m_changed.notify_all();
}

// A thread that is only about to end still frees what the TLS library keeps for it.
void HttpServer::JoinEnded() {
    std::list<Conversation> ended;
    {
        const std::lock_guard<std::mutex> guard(m_mutex);
        ended.swap(m_ended);
    }
    for (Conversation& conversation : ended) {
        conversation.thread.join();
    }
}

HttpHandler HttpServer::Record(const HttpRequest& request) {
    const std::lock_guard<std::mutex> guard(m_mutex);
    m_requests.push_back(request);
    m_changed.notify_all();
    const auto handler = m_handlers.find(request.Path());
    return handler != m_handlers.end() ? handler->second : AnswerNotFound;
}

void HttpServer::WaitForRelease(const std::string& path) {
    std::unique_lock<std::mutex> guard(m_mutex);
    m_changed.wait(guard, [&] { return m_stopping || m_released.count(path) != 0; });
}

// The caller holds the lock.
std::size_t HttpServer::CountLocked(const std::string& path) const {
    return static_cast<std::size_t>(
        std::count_if(m_requests.begin(), m_requests.end(),
                      [&](const HttpRequest& request) { return request.Path() == path; }));
}
