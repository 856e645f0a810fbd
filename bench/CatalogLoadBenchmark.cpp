// How long it takes to load a catalogue and find its first message, against the C library. A
// program of its own: a runtime keeps each of these many domains and searches through them, and no
// real program has so many.

#include <string>

#include "CatalogPeers.h"

namespace {

/// Binds a domain and looks its first message up, which loads the catalogue.
template <class Peer>
void Load(benchmark::State& state) {
    const Gettext gettext = Peer::Functions();
    const std::string folder = Catalogs().Path();
    const std::string key = Key(7);
    for (auto round : state) {
        state.PauseTiming();
        const std::string domain = Catalogs().NewDomain(static_cast<std::size_t>(state.range(0)));
        state.ResumeTiming();
        gettext.bind(domain.c_str(), folder.c_str());
        const char* const text = gettext.lookUp(domain.c_str(), key.c_str(), LC_MESSAGES);
        if (text == key.c_str()) {
            state.SkipWithError("the catalogue is not loaded");
            return;
        }
    }
}

// Neither runtime unloads these: a fixed number keeps the process small.
void FewLoads(benchmark::internal::Benchmark* benchmark) {
    benchmark->Apply(Sizes)->Iterations(50)->Unit(benchmark::kMicrosecond);
}

BENCHMARK_TEMPLATE(Load, Ours)->Apply(FewLoads);
BENCHMARK_TEMPLATE(Load, CLibrary)->Apply(FewLoads);

}  // namespace
