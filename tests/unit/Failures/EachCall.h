#pragma once

#include <cstddef>
#include <functional>

#include "FailingCalls.h"

/// Carries something out while the call of that kind and number fails; gives whether there was one.
using Scenario = std::function<bool(Call kind, std::size_t number)>;

/// Does the work while the call of that kind and number fails; gives whether there was one.
template <class Work>
[[nodiscard]] bool WhileFailing(Call kind, std::size_t number, const Work& work) {
    const FailingCall failing(kind, number);
    work();
    return FailingCall::HasFailed();
}

/// The same scenario in a process of its own each time, which has done nothing of it before.
[[nodiscard]] Scenario InChild(const Scenario& scenario);

/// Runs the scenario once as it is, and then with the first call of the kind failing, the second,
/// and so on until it makes fewer. The test fails when a run leaves memory, a descriptor or a
/// thread behind, but so many runs may lose a block of memory that a library loses by itself. Gives
/// how many calls were failed.
[[nodiscard]] std::size_t FailEachCall(Call kind, const Scenario& scenario,
                                       std::size_t lossesOfALibrary = 0);
