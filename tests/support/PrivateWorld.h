#pragma once

#include <map>
#include <string>

/// The parts of the machine that a test program gets its own copy of.
struct PrivateWorld {
    /// The user's home, in the password database and in HOME, is an empty folder.
    bool home = true;
    /// /opt holds no "velto", and whatever is put there stays private.
    bool opt = true;
    /// /dev has no "log", and a socket can be made there.
    bool dev = true;
    /// A PEM file of the only certificate authorities to trust; empty leaves the machine's.
    std::string trustedCertificates;
    /// A folder that takes the place of the libraries' catalogues; empty leaves the machine's.
    std::string libraryCatalogs;
    /// A folder that becomes an empty disk of 64 KiB, which is soon full. It is created if missing.
    /// Empty makes no disk.
    std::string smallDisk;
    /// A folder that cannot be written, even by root, and the place where it appears so; empty
    /// makes none.
    std::string readOnlySource;
    std::string readOnlyFolder;
    /// Files that other files replace; the key is the path of the replaced file.
    std::map<std::string, std::string> coveredFiles;
};

/// Moves the process into a mount namespace of its own, where it and its children see these parts
/// instead of the machine's. All of it vanishes with these processes. What they create, others may
/// not write to, whatever the umask was. Must be called at the start
/// of main(); a program that has other threads by then is restarted in a child process. Needs no
/// privilege other than user namespaces, and keeps the user's id. On failure says why on standard
/// error and returns false.
[[nodiscard]] bool EnterPrivateWorld(const PrivateWorld& world);
