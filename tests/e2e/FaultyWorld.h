#pragma once

#include <sys/types.h>

#include <string>

#include "PrivateWorld.h"
#include "TemporaryFolder.h"

/// A disk of 64 KiB.
constexpr const char* kSmallDisk = "/home/small-disk";
/// A folder that cannot be written, in which an empty cookie store stands.
constexpr const char* kReadOnlyFolder = "/home/read-only";
constexpr const char* kCookieStore = "tkwebhelper.cookies.sqlite";
/// A user who owns nothing else.
constexpr uid_t kNobody = 65534;

/// What the tests of faults need besides a world of their own: two disks, and the engine's programs
/// as copies that a test may spoil. One for the whole program; made at the start of main.
class FaultyWorld {
public:
    static FaultyWorld& Get();

    /// The world to enter.
    [[nodiscard]] PrivateWorld Describe() const;

    /// The file that is run as this program of the engine or of its sandbox.
    [[nodiscard]] std::string Program(const std::string& name) const;

    /// A folder of the user's with another user's cookie store in it.
    [[nodiscard]] std::string ForeignStoreFolder() const;

private:
    FaultyWorld();

    TemporaryFolder m_folder;
};
