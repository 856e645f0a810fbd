// main() of the suites that start the real program.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Certificates.h"
#include "PrivateWorld.h"
#include "TemporaryFolder.h"
#include "VirtualDisplay.h"

int main(int argc, char** argv) {
    testing::InitGoogleMock(&argc, argv);
    if (testing::GTEST_FLAG(list_tests)) {
        return RUN_ALL_TESTS();
    }
    const TemporaryFolder libraryCatalogs;
    PrivateWorld world;
    world.trustedCertificates = TestAuthority();
    world.libraryCatalogs = libraryCatalogs.Path();
    if (!EnterPrivateWorld(world)) {
        return EXIT_FAILURE;
    }
    const VirtualDisplay display;
    return RUN_ALL_TESTS();
}
