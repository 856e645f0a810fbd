#pragma once

#include <cstdint>

/// Names of one module's error indices. The count bounds the array; an empty slot has no array.
struct ResultCodeModule {
    std::uint32_t count;
    const char* const* names;
};

constexpr std::uint32_t kResultCodeModuleCount = 224;

/// The suite's table, indexed by module number: constant, valid for the whole process.
extern const ResultCodeModule kResultCodeTable[kResultCodeModuleCount];

/// Gives GetResultCodeName() its table; a null table or a count of 0 takes it away. Called when
/// the log is initialised, before other threads look codes up.
void SetResultCodeTable(const ResultCodeModule* table, std::uint32_t moduleCount);
