// main() of the suite whose world is full of faults.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "FaultyWorld.h"
#include "VirtualDisplay.h"

int main(int argc, char** argv) {
    testing::InitGoogleMock(&argc, argv);
    if (testing::GTEST_FLAG(list_tests)) {
        return RUN_ALL_TESTS();
    }
    if (!EnterPrivateWorld(FaultyWorld::Get().Describe())) {
        return EXIT_FAILURE;
    }
    const VirtualDisplay display;
    return RUN_ALL_TESTS();
}
