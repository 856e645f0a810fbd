// main() of the suites that start the real program.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Certificates.h"
#include "PrivateWorld.h"
#include "VirtualDisplay.h"

int main(int argc, char** argv) {
    testing::InitGoogleMock(&argc, argv);
    if (testing::GTEST_FLAG(list_tests)) {
        return RUN_ALL_TESTS();
    }
    PrivateWorld world;
    world.trustedCertificates = TestAuthority();
    if (!EnterPrivateWorld(world)) {
        return EXIT_FAILURE;
    }
    const VirtualDisplay display;
    return RUN_ALL_TESTS();
}
