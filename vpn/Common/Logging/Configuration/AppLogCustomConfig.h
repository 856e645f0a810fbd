#pragma once

#include <cstdint>
#include <map>
#include <string>

#include "ResultCodes.h"

/// The verbosity of each component's debug log, as "debuglogconfig.json" in the installation folder
/// sets it. The file is read when the tables are first used. The tables belong to the whole process
/// and have no lock: the first use must come before other threads use them.
class CAppLogCustomConfig {
public:
    /// Maps a component's identifier to its level. Messages with a verbosity up to the level are
    /// written.
    using ComponentTable = std::map<std::int32_t, std::int32_t>;

    static ResultCode getConfigurationFilePath(std::string& path);

    /// Reads all bytes of the file. Logs its failures.
    static ResultCode getConfigurationFileContents(std::string& contents);

    /// Fills the table from the file, which holds a JSON object of component names and levels from
    /// 0 to 3. Any other level is logged and counts as 0. Logs its failures; entries read before a
    /// failure stay in the table.
    static ResultCode loadConfigurationFromFile(ComponentTable& table);

    /// If the effective table is empty, loads it from the file. If that fails, uses the default
    /// levels.
    static void init();

    /// Returns the identifier of the component with exactly this name, or 0. Calls init() first.
    static std::int32_t getComponent(const std::string& name);

    /// Returns the process's effective table. Calls init() first.
    static ComponentTable& getEffectiveTable();
};
