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

/// The framed TCP link to the agent on 127.0.0.1, with an I/O thread of its own.
///
/// Threads: constructed, destroyed and gated on the owner's thread; sendMessage() on any thread;
/// every handler and every callback on the I/O thread. Handing over to the io_service is the only
/// synchronisation.
///
/// Callbacks are virtual, so none may come while the derived object is only half there. The most
/// derived constructor calls openGate() last: until then the I/O thread dispatches nothing. The
/// most derived destructor calls shutdown() first.
class CJsonIpcClient {
public:
    /// Starts the I/O thread and the connection attempt. Never throws: the result is set to 0, or
    /// to the code of what failed; then the object lives, unconnected, and is to be destroyed.
    CJsonIpcClient(std::uint16_t port, ResultCode& result);
    virtual ~CJsonIpcClient();
    CJsonIpcClient(const CJsonIpcClient&) = delete;
    CJsonIpcClient& operator=(const CJsonIpcClient&) = delete;

    /// Copies the message and has it written on the I/O thread, within one second from the moment
    /// its own writing starts: messages wait for the connection, and for those before them.
    /// Never blocks.
    virtual void sendMessage(std::uint32_t messageId, const std::string& payload);

    /// A message arrived; null and 0 when it has no payload. The bytes are gone when the call
    /// returns.
    virtual void OnMsgReceived(std::uint32_t messageId, const char* payload,
                               std::size_t length) = 0;

    /// A message was written completely.
    virtual void OnIpcSendComplete(std::uint32_t messageId) = 0;

    /// A message could not be written, or not in time: a late one is reported twice.
    virtual void OnIpcSendError(std::uint32_t messageId) = 0;

    /// There is no connection and no further attempt.
    virtual void OnIpcConnectError() = 0;

    /// Nothing more will be received: the peer is gone, or a failed send cancelled the read.
    virtual void OnIpcReceiveError() = 0;

protected:
    /// Lets the I/O thread dispatch its first handler. Once or more.
    void openGate();

    /// Stops the I/O loop and waits for its thread, one second at most. Handlers that have not
    /// run yet never will. Once or more; only the first call counts.
    void shutdown();

    /// As sendMessage(); false, and logged, when there is no memory to hand the message over. Then
    /// no callback tells of it.
    [[nodiscard]] bool postMessage(std::uint32_t messageId, const std::string& payload);

    /// Starts the I/O thread unless it runs; false when it cannot be had.
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

    /// Tells the owner, once, that there is no connection or that it is over.
    void reportEnd();
    /// The same from outside of every handler, where nothing catches what a callback throws.
    void reportEndOfThread();

    void handleConnectTimeout(const boost::system::error_code& error);
    void handleConnect(const boost::system::error_code& error);

    void startReceive(std::size_t size);
    void handleReceived(const boost::system::error_code& error, std::size_t bytesTransferred);
    /// Delivers what came; gives the size of the next read, or 0 when it was refused.
    [[nodiscard]] std::size_t processReceivedData(std::size_t bytesTransferred);

    void startNextSend();
    void armSendTimer(const Send& send);
    void startWrite(const Send& send);
    void handleSendTimeout(const boost::system::error_code& error, const Send& send);
    void handleSent(const boost::system::error_code& error, std::size_t bytesTransferred,
                    const Send& send);
    void finishSendLater(const Send& send, const boost::system::error_code& error);

    void cancelPendingOperations();

    /// Shared with the I/O thread's function, so that it outlives whichever of the two ends first.
    /// Null when the I/O service could not be made.
    std::shared_ptr<Connection> m_connection;
    /// Null until it is started.
    std::unique_ptr<boost::thread> m_ioThread;
};
