#pragma once

#include <gtest/gtest.h>

#include <functional>

/// Carries a part of a test out in a child process, so that what it does to its process (the user,
/// the locale, a namespace) ends with it. Expectations count in there too: success means that they
/// held and that the child ended in the ordinary way. To be called while there is one thread.
[[nodiscard]] testing::AssertionResult HoldsInChild(const std::function<void()>& body);
