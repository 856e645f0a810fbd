// main() of the suite that has a small disk.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "FullDisk.h"
#include "PrivateWorld.h"

int main(int argc, char** argv) {
    testing::InitGoogleMock(&argc, argv);
    PrivateWorld world;
    world.smallDisk = kSmallDisk;
    return EnterPrivateWorld(world) ? RUN_ALL_TESTS() : EXIT_FAILURE;
}
