// The program's own gettext runtime against the C library's, when one message is looked up again
// and again. A program of its own, because the C library gets slower with each message that it has
// found.

#include "CatalogPeers.h"

namespace {

template <class Peer>
void RepeatedLookup(benchmark::State& state) {
    LookUp<Peer>(state, {Key(5)});
}

BENCHMARK_TEMPLATE(RepeatedLookup, Ours)->Apply(Sizes);
BENCHMARK_TEMPLATE(RepeatedLookup, CLibrary)->Apply(Sizes);

}  // namespace
