#include "ResultCodes.h"

#include <atomic>

#include "ResultCodeTable.h"

namespace {

constexpr std::uint32_t kMarkerMask = 0xFE000000;

std::atomic<const ResultCodeModule*> resultCodeTable{nullptr};
std::atomic<std::uint32_t> resultCodeModuleCount{0};

}  // namespace

void SetResultCodeTable(const ResultCodeModule* table, std::uint32_t moduleCount) {
    resultCodeTable = table;
    resultCodeModuleCount = moduleCount;
}

const char* GetResultCodeName(std::uint32_t code) {
    if ((code & kMarkerMask) != kMarkerMask) {
        return nullptr;
    }
    const ResultCodeModule* const table = resultCodeTable;
    // Bit 24 is not tested, so codes that begin with 0xFE and with 0xFF share their modules.
    const std::uint32_t moduleNumber = (code >> 16) & 0xFF;
    if (table == nullptr || moduleNumber >= resultCodeModuleCount) {
        return nullptr;
    }
    const ResultCodeModule& module = table[moduleNumber];
    if (module.names == nullptr) {
        return nullptr;
    }
    const std::uint32_t index = code & 0xFFFF;
    if (index < module.count && module.names[index] != nullptr) {
        return module.names[index];
    }
    return module.names[module.count - 1];
}
