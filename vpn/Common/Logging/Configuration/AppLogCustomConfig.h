#pragma once

#include <cstdint>
#include <map>
#include <string>

#include "ResultCodes.h"

/// The verbosity of each component's debug log, from "debuglogconfig.json" in the installation
/// folder. The file is read when the table is first used. Its table is one for the whole process
/// and has no lock: its first use belongs before other threads use it.
class CAppLogCustomConfig {
public:
    /// Component identifier to level: messages of a verbosity up to the level are written.
    using ComponentTable = std::map<std::int32_t, std::int32_t>;

    static ResultCode getConfigurationFilePath(std::string& path);

    /// Gives the bytes of the file; logs its failures.
    static ResultCode getConfigurationFileContents(std::string& contents);

    /// Makes the table what the file says: a JSON object of component names and levels from 0 to
    /// 3, other levels counting as 0. Logs its failures, of which entries read before stay.
    static ResultCode loadConfigurationFromFile(ComponentTable& table);

    /// Loads the effective table, or the default levels when that fails, if it is empty.
    static void init();

    /// The identifier of a component's exact name, or 0. Runs init().
    static std::int32_t getComponent(const std::string& name);

    /// The effective table, for the whole process. Runs init().
    static ComponentTable& getEffectiveTable();
};
