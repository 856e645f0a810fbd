#include "WindowTestProgram.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <gtk/gtk.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "Certificates.h"
#include "PrivateWorld.h"
#include "VirtualDisplay.h"

namespace {

void WriteToolkitSettings(const std::string& text) {
    const std::filesystem::path folder =
        std::filesystem::path(std::getenv("HOME")) / ".config/gtk-3.0";
    std::filesystem::create_directories(folder);
    std::ofstream(folder / "settings.ini") << text;
}

}  // namespace

int RunWindowTests(int argc, char** argv, const TestDesktop& desktop) {
    testing::InitGoogleMock(&argc, argv);
    if (testing::GTEST_FLAG(list_tests)) {
        return RUN_ALL_TESTS();
    }
    PrivateWorld world;
    world.trustedCertificates = TestAuthority();
    if (!desktop.tokenModules.empty()) {
        world.coveredFiles["/usr/share/p11-kit/modules"] = desktop.tokenModules;
    }
    if (!EnterPrivateWorld(world)) {
        return EXIT_FAILURE;
    }
    // The toolkit keeps its connection to the display for the whole process.
    const VirtualDisplay display(desktop.screen);
    if (!desktop.toolkitSettings.empty()) {
        WriteToolkitSettings(desktop.toolkitSettings);
    }
    gtk_init(&argc, &argv);
    return RUN_ALL_TESTS();
}
