#pragma once

#include <array>
#include <cstdint>

/// Names of one module's error indices. The count bounds the array and is at least 1; only an
/// empty slot has no array and a count of 0.
struct ResultCodeModule {
    std::uint32_t count;
    const char* const* names;
};

constexpr std::uint32_t kResultCodeModuleCount = 224;

using ResultCodeTable = std::array<ResultCodeModule, kResultCodeModuleCount>;

/// The suite's table, indexed by module number: constant, valid for the whole process.
extern const ResultCodeTable kResultCodeTable;

/// Gives GetResultCodeName() its table; a null table or a count of 0 takes it away. Called when
/// the log is initialised, before other threads look codes up.
void SetResultCodeTable(const ResultCodeModule* table, std::uint32_t moduleCount);
