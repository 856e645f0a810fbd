#pragma once

/// Folder under which the whole suite is installed, without a trailing slash. Fixed at build time.
constexpr char kInstallRoot[] = TUNNELKEEP_INSTALL_ROOT;
