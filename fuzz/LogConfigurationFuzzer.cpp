// The text of the debug-log configuration file.

// Boost's JSON reader uses the global bind placeholders. Without this macro every build prints a
// note.
#define BOOST_BIND_GLOBAL_PLACEHOLDERS

#include <algorithm>
#include <boost/property_tree/json_parser.hpp>
#include <boost/property_tree/ptree.hpp>
#include <charconv>
#include <optional>
#include <sstream>
#include <string>

#include "AppLogCustomConfig.h"
#include "Check.h"
#include "FuzzInput.h"
#include "FuzzTarget.h"
#include "LogCapture.h"
#include "PrivateInstallation.h"

namespace {

using Table = CAppLogCustomConfig::ComponentTable;

constexpr char kFile[] = "debuglogconfig.json";
constexpr char kComponent[] = "vpn_ipsec_ikev2";
constexpr std::int32_t kIdentifier = 1;
constexpr char kWhiteSpace[] = " \t\n\v\f\r";

struct Outcome {
    ResultCode result = kSuccess;
    Table table;
    std::size_t errors = 0;

    bool operator==(const Outcome& other) const {
        return result == other.result && table == other.table && errors == other.errors;
    }
};

Outcome Load(const std::string& text) {
    WriteInstalledFile(kFile, text);
    const LogCapture log;
    Outcome outcome;
    outcome.table = {{7, 7}};
    outcome.result = CAppLogCustomConfig::loadConfigurationFromFile(outcome.table);
    outcome.errors = log.Records().size();
    return outcome;
}

/// One whole decimal number with white space around it.
std::optional<std::int32_t> Number(std::string text) {
    text.erase(0, text.find_first_not_of(kWhiteSpace));
    text.erase(text.find_last_not_of(kWhiteSpace) + 1);
    const bool hasPlus = text.size() > 1 && text[0] == '+' && text[1] != '-';
    std::int32_t number = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data() + (hasPlus ? 1 : 0), end, number);
    return error == std::errc() && stop == end ? std::optional(number) : std::nullopt;
}

/// A second implementation: the levels that the document's members give.
Outcome Expected(const std::string& text) {
    Outcome outcome;
    try {
        std::istringstream stream(text);
        boost::property_tree::ptree tree;
        boost::property_tree::read_json(stream, tree);
        for (const auto& [name, value] : tree) {
            if (name != kComponent) {
                ++outcome.errors;
                continue;
            }
            const std::optional<std::int32_t> level = Number(value.data());
            if (!level) {
                outcome.result = APPLOGCUSTOMCONFIG_ERROR_UNEXPECTED;
                ++outcome.errors;
                break;
            }
            const bool isLevel = *level >= 0 && *level <= 3;
            outcome.table[kIdentifier] = isLevel ? *level : 0;
            outcome.errors += isLevel ? 0 : 1;
        }
    } catch (const boost::property_tree::json_parser_error&) {
        outcome.result = APPLOGCUSTOMCONFIG_ERROR_UNEXPECTED;
        outcome.errors = 1;
    }
    return outcome;
}

}  // namespace

int LLVMFuzzerInitialize(int* /*argc*/, char*** /*argv*/) {
    EnterPrivateInstallation();
    // Without a file the effective table is the default one. A lookup in it then loads nothing, so
    // a load does not recurse.
    CAppLogCustomConfig::init();
    return 0;
}

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text = FuzzInput(data, size).TakeRest();
    const Outcome outcome = Load(text);
    if (text.empty()) {
        TK_CHECK(outcome.result == APPLOGCUSTOMCONFIG_ERROR_CONFIG_FILE_NOT_READABLE);
        return 0;
    }
    TK_CHECK(outcome == Expected(text));
    TK_CHECK(outcome == Load(text + "\n"));
    TK_CHECK(CAppLogCustomConfig::getEffectiveTable() == (Table{{kIdentifier, 0}}));
    return 0;
}
