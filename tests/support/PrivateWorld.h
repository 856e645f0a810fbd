#pragma once

#include <map>
#include <string>

/// Which pieces of the machine a test program gets a copy of its own of.
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
    /// A folder that becomes an empty disk of 64 KiB, which is soon full; made when there is none.
    /// Empty makes no disk.
    std::string smallDisk;
    /// A folder that cannot be written, even by root, and where it is seen so; empty makes none.
    std::string readOnlySource;
    std::string readOnlyFolder;
    /// Files that others take the place of, by the path of the one that is covered.
    std::map<std::string, std::string> coveredFiles;
};

/// Moves the process into a mount namespace of its own, where it and its children see these
/// pieces instead of the machine's; all of it vanishes with them. To be called at the start of
/// main; a program that has other threads by then is restarted in a child process. Needs no
/// privilege beyond user namespaces, and keeps the user's id. On failure says why on standard error
/// and gives false.
[[nodiscard]] bool EnterPrivateWorld(const PrivateWorld& world);
