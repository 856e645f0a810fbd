#pragma once

#include <string>
#include <string_view>

/// Gives the process an installation folder of its own, in memory, which vanishes with it. To be
/// called before there is any other thread; ends the program when it cannot be had.
void EnterPrivateInstallation();

/// Writes a file of that folder anew and gives its path.
std::string WriteInstalledFile(const std::string& relativePath, std::string_view bytes);
