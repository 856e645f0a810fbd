// main() of the suite that runs with another build of the engine's library, which the dynamic
// linker takes only when the program starts.

#include <unistd.h>

#include <cstdlib>
#include <string>

#include "WindowTestProgram.h"

int main(int argc, char** argv) {
    const char* const path = std::getenv("LD_LIBRARY_PATH");
    if (path == nullptr || path != std::string(TK_OLD_ENGINE)) {
        setenv("LD_LIBRARY_PATH", TK_OLD_ENGINE, 1);
        execv("/proc/self/exe", argv);
        return EXIT_FAILURE;
    }
    return RunWindowTests(argc, argv);
}
