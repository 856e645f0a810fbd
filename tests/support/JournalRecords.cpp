#include "JournalRecords.h"

#include <string_view>

bool IsOfJournal(const std::string& file) {
    return file == "vpn/GUI/WebHelper/Operation/OperationJournal.cpp";
}

std::string WithoutTime(const std::string& message) {
    constexpr std::string_view kUnit = " ms";
    if (message.size() < kUnit.size() ||
        message.compare(message.size() - kUnit.size(), kUnit.size(), kUnit) != 0) {
        return message;
    }
    const std::size_t end = message.size() - kUnit.size();
    const std::size_t begin = message.find_last_not_of("0123456789", end - 1) + 1;
    return begin == end ? message : message.substr(0, begin) + "N ms";
}
