// The program's own gettext runtime against the C library's, on the same catalogues, when every
// lookup asks for another message. The time grows with the logarithm of the catalogue's size.

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "CatalogPeers.h"

namespace {

/// Keys in an order in which a cache of the last lookups does not help.
std::vector<std::string> MixedKeys(std::size_t messages) {
    std::vector<std::string> keys(messages);
    for (std::size_t number = 0; number < messages; ++number) {
        keys[number] = Key(number);
    }
    std::shuffle(keys.begin(), keys.end(), std::minstd_rand());
    return keys;
}

template <class Peer>
void DifferentLookups(benchmark::State& state) {
    LookUp<Peer>(state, MixedKeys(static_cast<std::size_t>(state.range(0))));
}

template <class Peer>
void MissingLookup(benchmark::State& state) {
    LookUp<Peer>(state, {"nobody has translated this"});
}

BENCHMARK_TEMPLATE(DifferentLookups, Ours)->Apply(Sizes);
BENCHMARK_TEMPLATE(DifferentLookups, CLibrary)->Apply(Sizes);
BENCHMARK_TEMPLATE(MissingLookup, Ours)->Apply(Sizes);
BENCHMARK_TEMPLATE(MissingLookup, CLibrary)->Apply(Sizes);

}  // namespace
