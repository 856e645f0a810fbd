#pragma once

#include <cstddef>
#include <cstdint>

// What a fuzz target gives to the fuzzing engine, or to the program that replays its files.

/// Tries one input. Always gives 0; a fault ends the program.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

/// Called once before the first input, when a target has one. Always gives 0.
extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv);
