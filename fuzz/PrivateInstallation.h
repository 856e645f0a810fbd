#pragma once

#include <string>
#include <string_view>

/// Gives the process an installation folder of its own, in memory, which vanishes with the process.
/// Must be called before there is another thread. Ends the program if the folder cannot be made.
void EnterPrivateInstallation();

/// Writes a new file in that folder and returns its path.
std::string WriteInstalledFile(const std::string& relativePath, std::string_view bytes);
