#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "ResultCodes.h"

namespace boost {
class thread;
}  // namespace boost
namespace boost::system {
class error_code;
}  // namespace boost::system

class CJsonIpcSend;

/// The framed TCP connection to the agent on 127.0.0.1, with an I/O thread of its own.
///
/// Threads: the owner's thread constructs and destroys the client, and opens its gate.
/// sendMessage() may be called on any thread. Every handler and every callback runs on the I/O
/// thread. Posting to the io_context is the only synchronisation.
///
/// Callbacks are virtual, so none may come before the derived object is complete. The most derived
/// constructor must call openGate() last: until then the I/O thread runs no handler. The most
/// derived destructor must call shutdown() first.
class CJsonIpcClient {
public:
    /// Starts the I/O thread and the connection attempt. Never throws: it sets the result to
    /// success or to the code of the failure. After a failure the object is unconnected and must
    /// still be destroyed.
    CJsonIpcClient(std::uint16_t port, ResultCode& result);
    virtual ~CJsonIpcClient();
    CJsonIpcClient(const CJsonIpcClient&) = delete;
    CJsonIpcClient& operator=(const CJsonIpcClient&) = delete;

    /// Copies the message and queues it for the I/O thread, which writes it. A message waits for
    /// the connection and for the messages before it; once its own write has started, it has one
    /// second. Never blocks.
    virtual void sendMessage(std::uint32_t messageId, const std::string& payload);

    /// A message arrived. If it has no payload, payload is null and length is 0. The bytes are
    /// valid only during the call.
    virtual void OnMsgReceived(std::uint32_t messageId, const char* payload,
                               std::size_t length) = 0;

    /// A message was written completely.
    virtual void OnIpcSendComplete(std::uint32_t messageId) = 0;

    /// A message could not be written, or not in time. A late message is reported twice.
    virtual void OnIpcSendError(std::uint32_t messageId) = 0;

    /// There is no connection and there will be no further attempt.
    virtual void OnIpcConnectError() = 0;

    /// Nothing more will be received: the peer is gone, or a failed send cancelled the read.
    virtual void OnIpcReceiveError() = 0;

protected:
    /// Lets the I/O thread run its handlers. May be called more than once.
    void openGate();

    /// Stops the I/O loop and waits at most one second for its thread. Handlers that have not run
    /// yet never will. May be called more than once; only the first call counts.
    void shutdown();

    /// As sendMessage(). If there is no memory to queue the message, logs that and returns false;
    /// then no callback reports the message.
    [[nodiscard]] bool postMessage(std::uint32_t messageId, const std::string& payload);

    /// Starts the I/O thread unless it runs already. Returns false if it cannot be started.
    [[nodiscard]] bool startIoServiceThread();

    /// Starts a connection attempt.
    void initIpc();

private:
    struct Connection;
    using Send = std::shared_ptr<CJsonIpcSend>;

    void ioServiceThread(const std::shared_ptr<Connection>& connection);

    [[nodiscard]] bool createConnection();
    [[nodiscard]] bool openSocket();
    [[nodiscard]] bool startConnecting();
    void joinIoThread();

    /// Reports to the owner, once, that there is no connection or that the connection is over.
    void reportEnd();
    /// The same, called outside of every handler, where nothing else catches what a callback
    /// throws.
    void reportEndOfThread();

    void handleConnectTimeout(const boost::system::error_code& error);
    void handleConnect(const boost::system::error_code& error);

    void startReceive(std::size_t size);
    void handleReceived(const boost::system::error_code& error, std::size_t bytesTransferred);
    /// Delivers the received data. Returns the size of the next read, or 0 if the data was refused.
    [[nodiscard]] std::size_t processReceivedData(std::size_t bytesTransferred);

    void startNextSend();
    void armSendTimer(const Send& send);
    void startWrite(const Send& send);
    void handleSendTimeout(const boost::system::error_code& error, const Send& send);
    void handleSent(const boost::system::error_code& error, std::size_t bytesTransferred,
                    const Send& send);
    void finishSendLater(const Send& send, const boost::system::error_code& error);

    void cancelPendingOperations();

    /// Shared with the I/O thread's function, so that it lives as long as either of the two. Null
    /// if it could not be created.
    std::shared_ptr<Connection> m_connection;
    /// Null until the thread is started.
    std::unique_ptr<boost::thread> m_ioThread;
};
