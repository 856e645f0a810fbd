// MatchWildcard() promises linear time. Text and pattern grow together here. A matcher that goes
// back and tries again would take quadratic time, or worse.

#include <benchmark/benchmark.h>

#include <cstddef>
#include <string>

#include "StringUtils.h"

namespace {

constexpr std::int64_t kShortest = 1 << 8;
constexpr std::int64_t kLongest = 1 << 20;

void Measure(benchmark::State& state, const std::string& text, const std::string& pattern) {
    for (auto round : state) {
        benchmark::DoNotOptimize(CStringUtils::MatchWildcard(text, pattern));
    }
    state.SetComplexityN(state.range(0));
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) *
                            static_cast<std::int64_t>(text.size() + pattern.size()));
}

// "aaaa..." against "*a*a*a...*b". The stars could divide the text in countless ways, and the end
// rules out every one of them.
void ManyStarsThatFail(benchmark::State& state) {
    const auto length = static_cast<std::size_t>(state.range(0));
    std::string pattern;
    for (std::size_t i = 0; i < length / 2; ++i) {
        pattern += "*a";
    }
    Measure(state, std::string(length, 'a'), pattern + "*b");
}
BENCHMARK(ManyStarsThatFail)->RangeMultiplier(4)->Range(kShortest, kLongest)->Complexity();

// The same with the failing segment in the middle, where the whole text is searched for it.
void ManyStarsThatFailInside(benchmark::State& state) {
    const auto length = static_cast<std::size_t>(state.range(0));
    std::string pattern;
    for (std::size_t i = 0; i < length / 4; ++i) {
        pattern += "*a";
    }
    Measure(state, std::string(length, 'a'), pattern + "*b*");
}
BENCHMARK(ManyStarsThatFailInside)->RangeMultiplier(4)->Range(kShortest, kLongest)->Complexity();

// "aaaa..." against "*aaa...ab*": one long segment that almost matches at every position.
void LongSegmentThatAlmostMatches(benchmark::State& state) {
    const auto length = static_cast<std::size_t>(state.range(0));
    Measure(state, std::string(length, 'a'), "*" + std::string(length / 2, 'a') + "b*");
}
BENCHMARK(LongSegmentThatAlmostMatches)
    ->RangeMultiplier(4)
    ->Range(kShortest, kLongest)
    ->Complexity();

// A pattern that matches, with a star between all of the text's words.
void ManyStarsThatMatch(benchmark::State& state) {
    const auto length = static_cast<std::size_t>(state.range(0));
    std::string text;
    std::string pattern;
    while (text.size() < length) {
        text += "word, ";
        pattern += "word*";
    }
    Measure(state, text, pattern);
}
BENCHMARK(ManyStarsThatMatch)->RangeMultiplier(4)->Range(kShortest, kLongest)->Complexity();

}  // namespace
