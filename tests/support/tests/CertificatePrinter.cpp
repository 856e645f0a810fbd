// Moves into a world that trusts the authorities of one file alone, and prints whom it then trusts.

#include <cstdlib>
#include <fstream>
#include <iostream>

#include "PrivateWorld.h"

int main(int argc, char** argv) {
    PrivateWorld world;
    world.home = world.opt = world.dev = false;
    world.trustedCertificates = argc == 2 ? argv[1] : "";
    if (!EnterPrivateWorld(world)) {
        return EXIT_FAILURE;
    }
    std::cout << std::ifstream("/etc/ssl/certs/ca-certificates.crt").rdbuf();
    return EXIT_SUCCESS;
}
