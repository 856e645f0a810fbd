// The program's own gettext runtime against the C library's when one message is asked for again and
// again. By itself, since the C library gets slower with each message that it ever found.

#include "CatalogPeers.h"

namespace {

template <class Peer>
void RepeatedLookup(benchmark::State& state) {
    LookUp<Peer>(state, {Key(5)});
}

BENCHMARK_TEMPLATE(RepeatedLookup, Ours)->Apply(Sizes);
BENCHMARK_TEMPLATE(RepeatedLookup, CLibrary)->Apply(Sizes);

}  // namespace
