#include "JSONIPCClient.h"

#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <boost/asio/executor_work_guard.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/read.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/asio/write.hpp>
#include <boost/chrono/duration.hpp>
#include <boost/thread/thread.hpp>
#include <cassert>
#include <cerrno>
#include <chrono>
#include <exception>
#include <new>
#include <optional>
#include <utility>

#include "AppLog.h"
#include "ExceptionText.h"
#include "JsonIpcFrame.h"
#include "JsonIpcFrameReader.h"
#include "JsonIpcSendQueue.h"
#include "StartGate.h"
#include "TrustedServer.h"

using boost::asio::ip::tcp;
using boost::system::error_code;

namespace {

constexpr std::uint16_t kLowestPort = 1024;
constexpr const char* kServerAddress = "127.0.0.1";
constexpr std::chrono::seconds kConnectTimeout{10};
constexpr std::chrono::seconds kSendTimeout{1};
constexpr boost::chrono::seconds kJoinTimeout{1};

// The functions under whose names the steps of the start and of the end log.
constexpr const char* kConstructor = "CJsonIpcClient";
constexpr const char* kDestructor = "~CJsonIpcClient";

// The engine starts child processes at any moment. The socket must therefore be close-on-exec from
// the moment when it is created. Asio cannot open it so.
void OpenCloseOnExec(tcp::socket& socket) {
    const int descriptor = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, IPPROTO_TCP);
    if (descriptor < 0) {
        throw boost::system::system_error(errno, boost::system::system_category(), "open");
    }
    error_code error;
    try {
        socket.assign(tcp::v4(), descriptor, error);
    } catch (const std::bad_alloc&) {
        error = boost::asio::error::no_memory;
    }
    if (error) {
        ::close(descriptor);
        throw boost::system::system_error(error, "open");
    }
}

// A result is one small frame that the agent waits for. With Nagle's algorithm it could be held
// back for up to 40 ms, until the previous result is acknowledged.
void SendWithoutDelay(tcp::socket& socket) {
    error_code ignored;
    socket.set_option(tcp::no_delay(true), ignored);
}

// Returns why the new connection to the server must not be used, or no error.
error_code RefusalOf(tcp::socket& socket, const tcp::endpoint& server) {
    error_code ignored;
    const tcp::endpoint ours = socket.local_endpoint(ignored);
    // TCP can connect a socket to itself: if nobody listens on the port, and the kernel by chance
    // chooses that same port for our end.
    if (ours == server) {
        return boost::asio::error::connection_refused;
    }
    if (IsTrustedServer(server.port(), ours.port())) {
        return {};
    }
    // Messages may wait already. They must not reach the stranger.
    socket.shutdown(tcp::socket::shutdown_both, ignored);
    return boost::asio::error::access_denied;
}

// A short read without an error means that we cancelled it.
error_code AbortedUnless(bool isComplete, const error_code& error) {
    return error || isComplete ? error : error_code(boost::asio::error::operation_aborted);
}

}  // namespace

/// The state that the I/O thread works on. Its handlers hold no reference to it, because it owns
/// them.
struct CJsonIpcClient::Connection {
    enum class Phase {
        unconnected,  ///< no attempt has been made
        connecting,   ///< the connect timer runs; messages wait
        reading,      ///< connected; a read is under way
        stalled,      ///< connected, but read no more after a refusal or a failed send
        over,         ///< the end has been reported to the owner
    };

    CStartGate gate;
    boost::asio::io_context ioService;
    boost::asio::executor_work_guard<boost::asio::io_context::executor_type> work{
        ioService.get_executor()};
    tcp::socket socket{ioService};
    tcp::endpoint endpoint;
    Phase phase = Phase::unconnected;
    boost::asio::steady_timer connectTimer{ioService};

    std::array<char, kMaximumPayloadLength> buffer{};
    CJsonIpcFrameReader reader{kMaximumPayloadLength};

    CJsonIpcSendQueue sends;
    /// The timer of the message that is being written. Each message has a new timer.
    std::optional<boost::asio::steady_timer> sendTimer;

    [[nodiscard]] bool onIoThread() { return ioService.get_executor().running_in_this_thread(); }
};

CJsonIpcClient::CJsonIpcClient(std::uint16_t port, ResultCode& result) {
    result = kSuccess;
    if (!createConnection()) {
        result = JSONIPCCLIENT_ERROR_IOSERVICE_THREAD_FAILURE;
        return;
    }
    if (port < kLowestPort) {
        TK_LOG_ERROR("Invalid listener port parameter (%u)", static_cast<unsigned>(port));
        result = JSONIPCCLIENT_ERROR_BAD_PARAMETER;
        return;
    }
    if (!startIoServiceThread()) {
        result = JSONIPCCLIENT_ERROR_IOSERVICE_THREAD_FAILURE;
        return;
    }
    if (!openSocket()) {
        result = JSONIPCCLIENT_ERROR_OPEN_SOCKET_FAILURE;
        return;
    }
    m_connection->endpoint = tcp::endpoint(boost::asio::ip::make_address_v4(kServerAddress), port);
    if (!startConnecting()) {
        result = JSONIPCCLIENT_ERROR_OPEN_SOCKET_FAILURE;
    }
}

CJsonIpcClient::~CJsonIpcClient() {
    shutdown();
}

bool CJsonIpcClient::createConnection() {
    try {
        m_connection = std::make_shared<Connection>();
        return true;
    } catch (const std::exception& error) {
        TK_LOG_ERROR_OF(kConstructor, "Caught io service thread exception - %s",
                        CExceptionText(error).Text());
        return false;
    }
}

bool CJsonIpcClient::startIoServiceThread() {
    if (m_ioThread != nullptr && m_ioThread->joinable()) {
        TK_LOG_ERROR_OF(kConstructor, "Thread is already running");
        return true;
    }
    try {
        m_ioThread =
            std::make_unique<boost::thread>(&CJsonIpcClient::ioServiceThread, this, m_connection);
        return true;
    } catch (const std::exception& error) {
        TK_LOG_ERROR_OF(kConstructor, "Caught io service thread exception - %s",
                        CExceptionText(error).Text());
        return false;
    }
}

bool CJsonIpcClient::openSocket() {
    try {
        OpenCloseOnExec(m_connection->socket);
        SendWithoutDelay(m_connection->socket);
        return true;
    } catch (const std::exception& error) {
        TK_LOG_ERROR_OF(kConstructor, "Failed to open TCP socket - %s",
                        CExceptionText(error).Text());
        return false;
    }
}

bool CJsonIpcClient::startConnecting() {
    try {
        initIpc();
        return true;
    } catch (const std::exception& error) {
        TK_LOG_ERROR_OF(kConstructor, "Failed to start IPC connection - %s",
                        CExceptionText(error).Text());
        return false;
    }
}

void CJsonIpcClient::openGate() {
    // From here on a callback can destroy this object. The copy keeps the gate alive.
    const std::shared_ptr<Connection> connection = m_connection;
    if (connection != nullptr) {
        connection->gate.Open();
    }
}

void CJsonIpcClient::shutdown() {
    if (m_connection == nullptr || m_connection->ioService.stopped()) {
        return;
    }
    m_connection->ioService.stop();
    openGate();
    if (m_ioThread != nullptr && m_ioThread->joinable()) {
        joinIoThread();
    }
}

void CJsonIpcClient::joinIoThread() {
    try {
        if (m_ioThread->try_join_for(kJoinTimeout)) {
            TK_LOG_INFORMATION_OF(kDestructor, "Successfully stopped io service thread");
            return;
        }
        TK_LOG_ERROR_OF(kDestructor, "Failed to stop io service thread");
    } catch (const std::exception& error) {
        // Joining throws if a callback destroys this object, because the I/O thread cannot wait for
        // itself.
        TK_LOG_ERROR_OF(kDestructor, "Caught io service thread exception - %s",
                        CExceptionText(error).Text());
    }
    // The detached thread keeps the connection alive. Once its current handler has returned, it
    // does not touch this object any more.
    m_ioThread->detach();
}

void CJsonIpcClient::ioServiceThread(const std::shared_ptr<Connection>& connection) {
    connection->gate.Wait();
    try {
        connection->ioService.run();
    } catch (const std::exception& error) {
        TK_LOG_ERROR("Caught io service thread exception - %s", CExceptionText(error).Text());
        // No handler will run any more. Without a report the owner would wait for ever.
        if (!connection->ioService.stopped()) {
            reportEndOfThread();
        }
    }
}

void CJsonIpcClient::reportEndOfThread() {
    try {
        reportEnd();
    } catch (const std::exception& error) {
        TK_LOG_ERROR_OF("ioServiceThread", "Caught io service thread exception - %s",
                        CExceptionText(error).Text());
    }
}

void CJsonIpcClient::reportEnd() {
    const auto phase = std::exchange(m_connection->phase, Connection::Phase::over);
    if (phase == Connection::Phase::reading || phase == Connection::Phase::stalled) {
        OnIpcReceiveError();
    } else if (phase != Connection::Phase::over) {
        OnIpcConnectError();
    }
}

void CJsonIpcClient::initIpc() {
    Connection& connection = *m_connection;
    TK_LOG_INFORMATION("Initiating IPC connection to %s:%u...",
                       connection.endpoint.address().to_string().c_str(),
                       static_cast<unsigned>(connection.endpoint.port()));
    connection.connectTimer.expires_after(kConnectTimeout);
    connection.connectTimer.async_wait(
        [this](const error_code& error) { handleConnectTimeout(error); });
    connection.phase = Connection::Phase::connecting;
    connection.socket.async_connect(
        connection.endpoint, [this, &connection](const error_code& error) {
            handleConnect(error ? error : RefusalOf(connection.socket, connection.endpoint));
        });
}

void CJsonIpcClient::handleConnectTimeout(const error_code& error) {
    Connection& connection = *m_connection;
    assert(connection.onIoThread());
    // A timer that expires while the connect completes cannot be cancelled any more.
    if (error == boost::asio::error::operation_aborted ||
        connection.phase != Connection::Phase::connecting) {
        return;
    }
    TK_LOG_ERROR("IPC connect timed out");
    cancelPendingOperations();
}

void CJsonIpcClient::handleConnect(const error_code& error) {
    Connection& connection = *m_connection;
    assert(connection.onIoThread());
    connection.connectTimer.cancel();
    if (error) {
        TK_LOG_ERROR("IPC connect error [%d-%s]", error.value(), error.message().c_str());
        reportEnd();
        if (!connection.ioService.stopped()) {
            cancelPendingOperations();
        }
        return;
    }
    TK_LOG_INFORMATION("IPC connection established");
    connection.phase = Connection::Phase::reading;
    startReceive(kFrameHeaderSize);
    startNextSend();
}

void CJsonIpcClient::startReceive(std::size_t size) {
    Connection& connection = *m_connection;
    boost::asio::async_read(
        connection.socket, boost::asio::buffer(connection.buffer, size),
        [&connection, size](const error_code& error, std::size_t received) {
            const bool isWanted = connection.phase == Connection::Phase::reading;
            return error || !isWanted ? 0 : size - received;
        },
        [this, size](const error_code& error, std::size_t received) {
            handleReceived(AbortedUnless(received == size, error), received);
        });
}

void CJsonIpcClient::handleReceived(const error_code& error, std::size_t bytesTransferred) {
    Connection& connection = *m_connection;
    assert(connection.onIoThread());
    if (error) {
        TK_LOG_ERROR("IPC receive error [%d-%s]", error.value(), error.message().c_str());
        reportEnd();
        if (!connection.ioService.stopped()) {
            cancelPendingOperations();
        }
        return;
    }
    const std::size_t nextSize = processReceivedData(bytesTransferred);
    if (connection.ioService.stopped()) {
        return;
    }
    if (nextSize == 0) {
        // Deliberately not reported to the owner: the connection stays open and is read no more.
        TK_LOG_ERROR("Failed to process received data");
        cancelPendingOperations();
        return;
    }
    startReceive(nextSize);
}

std::size_t CJsonIpcClient::processReceivedData(std::size_t bytesTransferred) {
    Connection& connection = *m_connection;
    const JsonIpcFrameStep step =
        connection.reader.ProcessReceivedData(connection.buffer.data(), bytesTransferred);
    if (step.outcome == JsonIpcFrameStep::Outcome::message) {
        OnMsgReceived(step.messageId, step.payload, step.length);
    }
    return step.nextSize;
}

void CJsonIpcClient::sendMessage(std::uint32_t messageId, const std::string& payload) {
    static_cast<void>(postMessage(messageId, payload));
}

bool CJsonIpcClient::postMessage(std::uint32_t messageId, const std::string& payload) try {
    // The message's effects can destroy this object before this call returns. The copy keeps the
    // io_context alive.
    const std::shared_ptr<Connection> connection = m_connection;
    if (connection == nullptr) {
        return true;
    }
    auto send = std::make_shared<CJsonIpcSend>(messageId, payload);
    boost::asio::post(connection->ioService, [this, send = std::move(send)] {
        m_connection->sends.Add(send);
        startNextSend();
    });
    return true;
} catch (const std::bad_alloc& error) {
    TK_LOG_ERROR_OF("sendMessage", "Failed to sent '%s' message to server [%d-%s]",
                    MessageName(messageId), ENOMEM, error.what());
    return false;
}

void CJsonIpcClient::startNextSend() {
    Connection& connection = *m_connection;
    assert(connection.onIoThread());
    if (connection.phase == Connection::Phase::connecting) {
        return;
    }
    const Send send = connection.sends.Start();
    if (send == nullptr) {
        return;
    }
    if (connection.sends.IsCut()) {
        finishSendLater(send, boost::asio::error::broken_pipe);
        return;
    }
    armSendTimer(send);
    startWrite(send);
}

void CJsonIpcClient::armSendTimer(const Send& send) {
    Connection& connection = *m_connection;
    connection.sendTimer.emplace(connection.ioService, kSendTimeout);
    connection.sendTimer->async_wait(
        [this, send](const error_code& error) { handleSendTimeout(error, send); });
}

void CJsonIpcClient::startWrite(const Send& send) {
    boost::asio::async_write(
        m_connection->socket, boost::asio::buffer(send->Frame()),
        [send](const error_code& error, std::size_t written) {
            return error ? 0 : send->BytesLeft(written);
        },
        [this, send](const error_code& error, std::size_t written) {
            handleSent(error, written, send);
        });
}

void CJsonIpcClient::handleSendTimeout(const error_code& error, const Send& send) {
    Connection& connection = *m_connection;
    assert(connection.onIoThread());
    // A timer that expires while the write completes cannot be cancelled any more.
    if (error == boost::asio::error::operation_aborted || !CJsonIpcSendQueue::OnTimeout(*send)) {
        return;
    }
    TK_LOG_ERROR("Timed out sending message '%s'", MessageName(send->MessageId()));
    OnIpcSendError(send->MessageId());
    if (!connection.ioService.stopped()) {
        // The cancelled write ends as aborted and is reported once more. This is deliberate, and
        // the layer above expects it.
        cancelPendingOperations();
    }
}

void CJsonIpcClient::handleSent(const error_code& writeError, std::size_t bytesTransferred,
                                const Send& send) {
    Connection& connection = *m_connection;
    assert(connection.onIoThread());
    const error_code error = connection.sends.OnWritten(send, bytesTransferred, writeError);
    if (!connection.sends.IsWriting()) {
        connection.sendTimer.reset();
    }
    if (error) {
        TK_LOG_ERROR("Failed to sent '%s' message to server [%d-%s]",
                     MessageName(send->MessageId()), error.value(), error.message().c_str());
        OnIpcSendError(send->MessageId());
    } else {
        OnIpcSendComplete(send->MessageId());
    }
    if (connection.ioService.stopped()) {
        return;
    }
    if (error) {
        cancelPendingOperations();
    }
    startNextSend();
}

void CJsonIpcClient::finishSendLater(const Send& send, const error_code& error) {
    boost::asio::post(m_connection->ioService, [this, send, error] { handleSent(error, 0, send); });
}

void CJsonIpcClient::cancelPendingOperations() {
    Connection& connection = *m_connection;
    assert(connection.onIoThread());
    if (connection.phase == Connection::Phase::reading) {
        connection.phase = Connection::Phase::stalled;
    }
    const auto waitingSends = connection.sends.Cancel();
    error_code ignored;
    connection.socket.cancel(ignored);
    for (const Send& send : waitingSends) {
        finishSendLater(send, boost::asio::error::operation_aborted);
    }
}
