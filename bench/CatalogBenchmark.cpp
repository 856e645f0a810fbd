// The program's own gettext runtime against the C library's, on the same catalogues: lookups must
// not be slower than those that it takes the place of, and grow with the logarithm of the
// catalogue.

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "CatalogPeers.h"

namespace {

/// Keys in an order that no cache of the last lookups helps with.
std::vector<std::string> MixedKeys(std::size_t messages) {
    std::vector<std::string> keys(messages);
    for (std::size_t number = 0; number < messages; ++number) {
        keys[number] = Key(number);
    }
    std::shuffle(keys.begin(), keys.end(), std::minstd_rand());
    return keys;
}

/// Looks the keys up, one after the other and again from the first.
template <class Peer>
void LookUp(benchmark::State& state, const std::vector<std::string>& keys) {
    const Gettext gettext = Peer::Functions();
    const std::string domain = Catalogs().Domain(static_cast<std::size_t>(state.range(0)));
    gettext.bind(domain.c_str(), Catalogs().Path().c_str());
    if (gettext.lookUp(domain.c_str(), Key(7).c_str(), LC_MESSAGES) != Translation(7)) {
        state.SkipWithError("the catalogue is not found");
        return;
    }
    std::size_t next = 0;
    for (auto round : state) {
        benchmark::DoNotOptimize(gettext.lookUp(domain.c_str(), keys[next].c_str(), LC_MESSAGES));
        next = next + 1 == keys.size() ? 0 : next + 1;
    }
}

template <class Peer>
void RepeatedLookup(benchmark::State& state) {
    LookUp<Peer>(state, {Key(5)});
}

template <class Peer>
void DifferentLookups(benchmark::State& state) {
    LookUp<Peer>(state, MixedKeys(static_cast<std::size_t>(state.range(0))));
}

template <class Peer>
void MissingLookup(benchmark::State& state) {
    LookUp<Peer>(state, {"nobody has translated this"});
}

BENCHMARK_TEMPLATE(RepeatedLookup, Ours)->Apply(Sizes);
BENCHMARK_TEMPLATE(RepeatedLookup, CLibrary)->Apply(Sizes);
BENCHMARK_TEMPLATE(DifferentLookups, Ours)->Apply(Sizes);
BENCHMARK_TEMPLATE(DifferentLookups, CLibrary)->Apply(Sizes);
BENCHMARK_TEMPLATE(MissingLookup, Ours)->Apply(Sizes);
BENCHMARK_TEMPLATE(MissingLookup, CLibrary)->Apply(Sizes);

}  // namespace
