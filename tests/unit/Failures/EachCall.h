#pragma once

#include <cstddef>
#include <functional>

#include "FailingCalls.h"

/// Carries something out while the call of that kind and number fails; gives whether there was one.
using Scenario = std::function<bool(Call kind, std::size_t number)>;

/// Runs the scenario once as it is, and then with the first call of the kind failing, the second,
/// and so on until it makes fewer. The test fails when a run leaves memory, a descriptor or a
/// thread behind. Gives how many calls were failed.
[[nodiscard]] std::size_t FailEachCall(Call kind, const Scenario& scenario);
