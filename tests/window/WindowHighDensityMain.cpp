// main() of the suite that runs on a screen with two pixels where others have one.

#include <cstdlib>

#include "WindowTestProgram.h"

int main(int argc, char** argv) {
    setenv("GDK_SCALE", "2", 1);
    TestDesktop desktop;
    desktop.screen = "2560x1600x24";
    return RunWindowTests(argc, argv, desktop);
}
