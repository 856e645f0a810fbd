// main() of the suites that show the real window with the real engine.

#include "WindowTestProgram.h"

int main(int argc, char** argv) {
    return RunWindowTests(argc, argv);
}
