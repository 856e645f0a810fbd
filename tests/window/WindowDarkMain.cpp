// main() of the suite that runs in the session of a person who prefers dark windows.

#include "WindowTestProgram.h"

int main(int argc, char** argv) {
    TestDesktop desktop;
    desktop.toolkitSettings = "[Settings]\ngtk-application-prefer-dark-theme=true\n";
    return RunWindowTests(argc, argv, desktop);
}
