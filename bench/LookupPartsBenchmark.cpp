// The parts of each lookup of the gettext runtime, one by one: the search itself, and the steps
// before it while nothing has changed.

#include <benchmark/benchmark.h>

#include <clocale>
#include <cstring>
#include <mutex>
#include <stdexcept>
#include <string>

#include "Catalogs.h"
#include "LocaleCandidates.h"
#include "MoCatalog.h"
#include "TemporaryFolder.h"

namespace {

constexpr char kLocale[] = "de_DE.UTF-8";

void UseLocale() {
    UseTestLocales();
    if (std::setlocale(LC_ALL, kLocale) == nullptr) {
        throw std::runtime_error("no test locale");
    }
}

void TakingTheLock(benchmark::State& state) {
    std::mutex mutex;
    for (auto round : state) {
        const std::lock_guard<std::mutex> guard(mutex);
        benchmark::ClobberMemory();
    }
}
BENCHMARK(TakingTheLock);

void AskingForTheLocale(benchmark::State& state) {
    UseLocale();
    for (auto round : state) {
        benchmark::DoNotOptimize(std::setlocale(LC_ALL, nullptr));
    }
}
BENCHMARK(AskingForTheLocale);

void ListingTheCandidates(benchmark::State& state) {
    CLocaleCandidates candidates;
    for (auto round : state) {
        benchmark::DoNotOptimize(candidates.Build(kLocale));
        benchmark::ClobberMemory();
    }
}
BENCHMARK(ListingTheCandidates);

void ComparingWithTheLastCandidates(benchmark::State& state) {
    CLocaleCandidates candidates;
    CLocaleCandidates last;
    if (!candidates.Build(kLocale) || !last.Build(kLocale)) {
        state.SkipWithError("the list does not fit");
        return;
    }
    for (auto round : state) {
        benchmark::DoNotOptimize(std::strcmp(candidates.Text(), last.Text()));
    }
}
BENCHMARK(ComparingWithTheLastCandidates);

void Find(benchmark::State& state, const char* key) {
    std::string entries;
    for (std::int64_t number = 0; number < state.range(0); ++number) {
        const std::string digits = std::to_string(number);
        entries += "msgid \"message " + digits + "\"\nmsgstr \"Meldung " + digits + "\"\n";
    }
    const TemporaryFolder folder;
    CompileCatalog(folder.Path("catalog.mo"), CatalogSource("UTF-8", entries));
    const std::string bytes = ReadFile(folder.Path("catalog.mo"));
    CMoCatalog catalog;
    if (!catalog.Parse(bytes) || catalog.Find("message 5") == nullptr) {
        state.SkipWithError("the catalogue cannot be read");
        return;
    }
    for (auto round : state) {
        benchmark::DoNotOptimize(catalog.Find(key));
    }
}

void FindingAgain(benchmark::State& state) {
    Find(state, "message 5");
}
BENCHMARK(FindingAgain)->Arg(10)->Arg(1000)->Arg(20000);

// A key that does not exist is searched for each time.
void Searching(benchmark::State& state) {
    Find(state, "message 5!");
}
BENCHMARK(Searching)->Arg(10)->Arg(1000)->Arg(20000);

}  // namespace
