// A record through the log's entry points, with a sink that discards it, against snprintf() of the
// same text. The counter shows how many allocations each record made before the sink: none.

#include <benchmark/benchmark.h>

#include <cstdio>

#include "AppLog.h"
#include "FailingCalls.h"

namespace {

constexpr char kFunction[] = "webViewLoadFailedCB";
constexpr char kFile[] = "vpn/GUI/WebHelper/Linux/GtkBrowserWindow.cpp";
constexpr std::uint32_t kLine = 512;
constexpr char kReason[] = "Could not connect: Connection refused";
constexpr char kUri[] = "https://vpn.example/login";
constexpr std::uint32_t kCode = 0xFEDE000A;
constexpr std::size_t kRecordSize = 2048;

/// Notes how many allocations had been made when a record arrived.
class DiscardingLogger : public ILogger {
public:
    explicit DiscardingLogger(std::size_t& allocations) : m_allocations(allocations) {}

    ResultCode Log(std::uint32_t /*severity*/, const char* text, const char* /*messageName*/,
                   std::uint32_t /*messageId*/, std::uint32_t /*level*/) override {
        benchmark::DoNotOptimize(text);
        m_allocations = CountedCalls::SoFar();
        return kSuccess;
    }

private:
    std::size_t& m_allocations;
};

/// Measures an entry point with that sink.
template <class EntryPoint>
void Measure(benchmark::State& state, const EntryPoint& entryPoint) {
    std::size_t allocationsAtSink = 0;
    ResultCode result = kSuccess;
    const CAppLog log(result, "benchmark", new DiscardingLogger(allocationsAtSink));
    const CountedCalls counted(Call::Allocation);
    std::size_t allocations = 0;
    for (auto round : state) {
        const std::size_t before = CountedCalls::SoFar();
        entryPoint();
        allocations += allocationsAtSink - before;
    }
    state.counters["allocations"] =
        benchmark::Counter(static_cast<double>(allocations), benchmark::Counter::kAvgIterations);
}

struct Ours {
    static void Message(benchmark::State& state) {
        Measure(state, [] {
            LogMessage(kFunction, kFile, kLine, 'E', "Failed to load page: %s, URI = %s", kReason,
                       kUri);
        });
    }
    static void FailedCall(benchmark::State& state) {
        Measure(state, [] {
            LogReturnCode(kFunction, kFile, kLine, 'E', "CJsonIpcClient", kCode, nullptr, nullptr);
        });
    }
};

struct Snprintf {
    static void Message(benchmark::State& state) {
        char record[kRecordSize];
        for (auto round : state) {
            std::snprintf(record, sizeof record,
                          "Function: %s\nFile: %s\nLine: %u\nFailed to load page: %s, URI = %s",
                          kFunction, kFile, kLine, kReason, kUri);
            benchmark::DoNotOptimize(record);
        }
    }
    static void FailedCall(benchmark::State& state) {
        char record[kRecordSize];
        for (auto round : state) {
            std::snprintf(record, sizeof record,
                          "Function: %s\nFile: %s\nLine: %u\nInvoked Function: %s\n"
                          "Return Code: %d (0x%.8X)\nDescription: %s\n%s",
                          kFunction, kFile, kLine, "CJsonIpcClient", static_cast<int>(kCode), kCode,
                          "unknown", "");
            benchmark::DoNotOptimize(record);
        }
    }
};

template <class Peer>
void Message(benchmark::State& state) {
    Peer::Message(state);
}
BENCHMARK_TEMPLATE(Message, Ours);
BENCHMARK_TEMPLATE(Message, Snprintf);

template <class Peer>
void FailedCall(benchmark::State& state) {
    Peer::FailedCall(state);
}
BENCHMARK_TEMPLATE(FailedCall, Ours);
BENCHMARK_TEMPLATE(FailedCall, Snprintf);

}  // namespace
