// main() of the suite whose machine has a reader for smart cards.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Certificates.h"
#include "PrivateWorld.h"
#include "TestTokens.h"
#include "VirtualDisplay.h"

int main(int argc, char** argv) {
    testing::InitGoogleMock(&argc, argv);
    if (testing::GTEST_FLAG(list_tests)) {
        return RUN_ALL_TESTS();
    }
    PrivateWorld world;
    world.trustedCertificates = TestAuthority();
    world.coveredFiles["/usr/share/p11-kit/modules"] = TokenModules();
    if (!EnterPrivateWorld(world)) {
        return EXIT_FAILURE;
    }
    const VirtualDisplay display;
    return RUN_ALL_TESTS();
}
