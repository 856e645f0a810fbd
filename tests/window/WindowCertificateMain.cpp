// main() of the suite whose machine has a reader for smart cards.

#include "TestTokens.h"
#include "WindowTestProgram.h"

int main(int argc, char** argv) {
    TestDesktop desktop;
    desktop.tokenModules = TokenModules();
    return RunWindowTests(argc, argv, desktop);
}
