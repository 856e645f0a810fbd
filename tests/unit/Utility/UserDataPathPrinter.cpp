// Prints what GetUserProgramDataPath() gives for a user name, then the log's lines. With a second
// argument the process first takes that number as its effective user id.

#include <unistd.h>

#include <cstdio>
#include <cstdlib>

#include "LogCapture.h"
#include "StoragePath.h"

int main(int argc, char** argv) {
    if (argc < 2) {
        return EXIT_FAILURE;
    }
    if (argc > 2 && seteuid(static_cast<uid_t>(std::strtoul(argv[2], nullptr, 10))) != 0) {
        return EXIT_FAILURE;
    }
    const LogCapture log;
    ResultCode result = kSuccess;
    std::printf("%s\n", CStoragePath(result, "").GetUserProgramDataPath(argv[1]).c_str());
    for (const std::string& line : log.Lines()) {
        std::printf("%s\n", line.c_str());
    }
    // What a sanitizer does at the end needs the rights that the process began with.
    return seteuid(getuid()) == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}
