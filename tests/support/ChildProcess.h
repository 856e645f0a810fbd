#pragma once

#include <gtest/gtest.h>

#include <functional>

/// Runs a part of a test in a child process, so that what it does to its process (the user, the
/// locale, a namespace) ends with it. Expectations in there count too: success means that they held
/// and that the child ended in the ordinary way. Must be called while there is one thread.
[[nodiscard]] testing::AssertionResult HoldsInChild(const std::function<void()>& body);
