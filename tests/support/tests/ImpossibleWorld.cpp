// Wants a private world with a file that does not exist, and says how it fared by its exit status.

#include <cstdlib>

#include "PrivateWorld.h"

int main() {
    PrivateWorld world;
    world.home = world.opt = world.dev = false;
    world.trustedCertificates = "/no/such/file.pem";
    return EnterPrivateWorld(world) ? EXIT_SUCCESS : EXIT_FAILURE;
}
