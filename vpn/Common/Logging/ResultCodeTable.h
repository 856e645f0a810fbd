#pragma once

#include <array>
#include <cstdint>

/// The names of one module's codes, by index. The count is the length of the array, at least 1.
/// Only an empty slot has no array and a count of 0.
struct ResultCodeModule {
    std::uint32_t count;
    const char* const* names;
};

constexpr std::uint32_t kResultCodeModuleCount = 224;

using ResultCodeTable = std::array<ResultCodeModule, kResultCodeModuleCount>;

/// The suite's table, indexed by module number. Constant.
extern const ResultCodeTable kResultCodeTable;

/// Sets the table for GetResultCodeName(). A null table or a count of 0 removes it. Called when the
/// log is initialised, before other threads look codes up.
void SetResultCodeTable(const ResultCodeModule* table, std::uint32_t moduleCount);
