// The stages through which an operation comes in and a result goes out, each measured alone, beside
// the property tree, which the JSON stages cannot do without.

#include <benchmark/benchmark.h>

#define BOOST_BIND_GLOBAL_PLACEHOLDERS
#include <boost/property_tree/json_parser.hpp>
#include <sstream>
#include <string>

#include "BrowserDataModel.h"
#include "IpcTexts.h"
#include "JsonIpcFrameReader.h"

namespace {

using boost::property_tree::ptree;

void ReadingAFrame(benchmark::State& state) {
    const std::vector<char> frame = EncodeFrame(kBrowserResultMessageId, OperationText(2048));
    CJsonIpcFrameReader reader;
    for (auto round : state) {
        benchmark::DoNotOptimize(reader.ProcessReceivedData(frame.data(), kFrameHeaderSize));
        benchmark::DoNotOptimize(reader.ProcessReceivedData(frame.data() + kFrameHeaderSize,
                                                            frame.size() - kFrameHeaderSize));
    }
}
BENCHMARK(ReadingAFrame);

void WritingAFrame(benchmark::State& state) {
    const std::string text = kResultText;
    for (auto round : state) {
        benchmark::DoNotOptimize(EncodeFrame(kBrowserResultMessageId, text));
    }
}
BENCHMARK(WritingAFrame);

struct Ours {
    static void Parse(const std::string& text) {
        CBrowserOperation operation;
        benchmark::DoNotOptimize(operation.Deserialize(text));
    }
    static void Serialize(const std::string& value) {
        const CBrowserResult result(BrowserResultType::success_with_cookie, value);
        std::string text;
        benchmark::DoNotOptimize(result.Serialize(text));
    }
};

struct PropertyTree {
    static void Parse(const std::string& text) {
        std::istringstream stream(text);
        ptree tree;
        boost::property_tree::read_json(stream, tree);
        benchmark::DoNotOptimize(tree);
    }
    static void Serialize(const std::string& value) {
        ptree tree;
        tree.put("result", "success_with_cookie");
        tree.put("cookie_value", value);
        std::ostringstream stream;
        boost::property_tree::write_json(stream, tree, false);
        benchmark::DoNotOptimize(stream.str());
    }
};

template <class Peer>
void ParsingAnOperation(benchmark::State& state) {
    const std::string text = OperationText(static_cast<std::size_t>(state.range(0)));
    for (auto round : state) {
        Peer::Parse(text);
    }
}
BENCHMARK_TEMPLATE(ParsingAnOperation, Ours)->Arg(256)->Arg(2048);
BENCHMARK_TEMPLATE(ParsingAnOperation, PropertyTree)->Arg(256)->Arg(2048);

template <class Peer>
void SerializingAResult(benchmark::State& state) {
    const std::string value(static_cast<std::size_t>(state.range(0)), 'v');
    for (auto round : state) {
        Peer::Serialize(value);
    }
}
BENCHMARK_TEMPLATE(SerializingAResult, Ours)->Arg(32)->Arg(2048);
BENCHMARK_TEMPLATE(SerializingAResult, PropertyTree)->Arg(32)->Arg(2048);

}  // namespace
