#pragma once

/// Ends the program, in every kind of build, if a fuzz target's promise does not hold.
#define TK_CHECK(condition) \
    ((condition) ? static_cast<void>(0) : FailCheck(#condition, __FILE__, __LINE__))

[[noreturn]] void FailCheck(const char* condition, const char* file, int line);
