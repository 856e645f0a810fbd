#include "WindowTestProgram.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <gtk/gtk.h>

#include "Certificates.h"
#include "PrivateWorld.h"
#include "VirtualDisplay.h"

int RunWindowTests(int argc, char** argv) {
    testing::InitGoogleMock(&argc, argv);
    if (testing::GTEST_FLAG(list_tests)) {
        return RUN_ALL_TESTS();
    }
    PrivateWorld world;
    world.trustedCertificates = TestAuthority();
    if (!EnterPrivateWorld(world)) {
        return EXIT_FAILURE;
    }
    // The toolkit keeps its connection to the display for the whole process.
    const VirtualDisplay display;
    gtk_init(&argc, &argv);
    return RUN_ALL_TESTS();
}
