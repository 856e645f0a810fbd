#pragma once

#include <cstddef>
#include <cstdint>

// The functions that a fuzz target defines for the fuzzing engine, or for the program that replays
// its files.

/// Tries one input. Always returns 0. A fault ends the program.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

/// Called once before the first input, if a target defines it. Always returns 0.
extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv);
