// Operations that come in and results that go out through the real socket, against a bare Asio
// echo of the same bytes. Each operation is answered on the I/O thread, as the echo is.

#include <benchmark/benchmark.h>
#include <unistd.h>

#include <array>
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/write.hpp>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <thread>

#include "AgentServer.h"
#include "BrowserIPCClient.h"
#include "IpcTexts.h"
#include "TestDeadline.h"

namespace {

using boost::asio::ip::tcp;
using boost::system::error_code;

/// The helper's part as far as the socket: it turns operations into records, and records into
/// results.
class Ours : public IBrowserIpcClientCB {
public:
    explicit Ours(std::uint16_t port) {
        if (!RegisterBrowserIpcClient(port, this, &m_client)) {
            throw std::runtime_error("no client");
        }
    }
    ~Ours() override { UnregisterBrowserIpcClient(m_client); }

    void OnReceivedBrowserOperation(const IBrowserOperation& operation) override {
        benchmark::DoNotOptimize(operation.GetUrl());
        static_cast<void>(m_client->SendBrowserResult(m_result));
    }
    void OnReceivedInvalidBrowserOperation() override {}
    void OnBrowserResultSent() override {}
    void OnBrowserResultSendError() override {}
    void OnIpcConnectError() override {}
    void OnIpcReceiveError() override {}

private:
    const CBrowserResult m_result{BrowserResultType::success_with_cookie, "7d1f0c"};
    IBrowserIpcClient* m_client = nullptr;
};

/// Sends back what it receives, as it receives it.
class AsioEcho {
public:
    explicit AsioEcho(std::uint16_t port) {
        m_socket.connect({boost::asio::ip::address_v4::loopback(), port});
        m_socket.set_option(tcp::no_delay(true));
        Read();
        m_thread = std::thread([this] { m_context.run(); });
    }
    ~AsioEcho() {
        m_context.stop();
        m_thread.join();
    }
    AsioEcho(const AsioEcho&) = delete;
    AsioEcho& operator=(const AsioEcho&) = delete;

private:
    void Read() {
        m_socket.async_read_some(boost::asio::buffer(m_bytes),
                                 [this](const error_code& error, std::size_t count) {
                                     if (!error) {
                                         Write(count);
                                     }
                                 });
    }
    void Write(std::size_t count) {
        boost::asio::async_write(m_socket, boost::asio::buffer(m_bytes, count),
                                 [this](const error_code& error, std::size_t /*written*/) {
                                     if (!error) {
                                         Read();
                                     }
                                 });
    }

    boost::asio::io_context m_context;
    tcp::socket m_socket{m_context};
    std::array<char, 4096> m_bytes{};
    std::thread m_thread;
};

/// The agent's end of a connection to the helper's part or to the echo.
template <class Peer>
class Session {
public:
    Session() {
        std::string reason;
        if (!m_agent.Listen(reason)) {
            throw std::runtime_error(reason);
        }
        m_peer.emplace(m_agent.Port());
        m_connection = m_agent.Accept(getpid(), DeadlineIn(kTestDeadline));
    }

    /// Writes the frame in this many pieces, each in a packet of its own.
    void Send(std::string_view frame, std::size_t pieces) {
        const std::size_t size = (frame.size() + pieces - 1) / pieces;
        while (!frame.empty()) {
            Check(m_connection->SendBytes(frame.substr(0, size)));
            frame.remove_prefix(std::min(size, frame.size()));
        }
    }

    void Receive() {
        Check(m_connection->ReceivePayload(m_payload, DeadlineIn(kTestDeadline)) ==
              ReceiveOutcome::Received);
    }

private:
    static void Check(bool done) {
        if (!done) {
            throw std::runtime_error("the connection is over");
        }
    }

    CAgentServer m_agent;
    std::optional<Peer> m_peer;
    std::optional<CHelperConnection> m_connection;
    std::string m_payload;
};

std::string Frame(std::size_t payloadSize) {
    const std::vector<char> frame =
        EncodeFrame(kBrowserResultMessageId, OperationText(payloadSize));
    return {frame.begin(), frame.end()};
}

template <class Peer>
void OneByOne(benchmark::State& state) {
    Session<Peer> session;
    const std::string frame = Frame(256);
    for (auto round : state) {
        session.Send(frame, 1);
        session.Receive();
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations()));
}
BENCHMARK_TEMPLATE(OneByOne, Ours)->UseRealTime();
BENCHMARK_TEMPLATE(OneByOne, AsioEcho)->UseRealTime();

template <class Peer>
void AHundredAtOnce(benchmark::State& state) {
    constexpr int kCount = 100;
    Session<Peer> session;
    std::string frames;
    for (int i = 0; i < kCount; ++i) {
        frames += Frame(256);
    }
    for (auto round : state) {
        session.Send(frames, 1);
        for (int i = 0; i < kCount; ++i) {
            session.Receive();
        }
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations()) * kCount);
}
BENCHMARK_TEMPLATE(AHundredAtOnce, Ours)->UseRealTime();
BENCHMARK_TEMPLATE(AHundredAtOnce, AsioEcho)->UseRealTime();

template <class Peer>
void LongestOperationInPieces(benchmark::State& state) {
    Session<Peer> session;
    const std::string frame = Frame(kMaximumPayloadLength);
    for (auto round : state) {
        session.Send(frame, static_cast<std::size_t>(state.range(0)));
        session.Receive();
    }
}
BENCHMARK_TEMPLATE(LongestOperationInPieces, Ours)->Arg(1)->Arg(2)->Arg(2057)->UseRealTime();
BENCHMARK_TEMPLATE(LongestOperationInPieces, AsioEcho)->Arg(1)->Arg(2)->Arg(2057)->UseRealTime();

}  // namespace
