#include "TemporaryFolder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <stdexcept>

namespace {

TEST(TemporaryFolder, GoesWithAllThatIsInIt) {
    std::string path;
    {
        const TemporaryFolder folder;
        path = folder.Path();
        WriteFile(folder.Path("a/b"), "text");
        EXPECT_EQ(ReadFile(folder.Path("a/b")), "text");
    }
    EXPECT_FALSE(std::filesystem::exists(path));
}

TEST(TemporaryFolder, TellsOfFilesThatCannotBeReadOrWritten) {
    const TemporaryFolder folder;
    EXPECT_THROW(static_cast<void>(ReadFile(folder.Path("missing"))), std::runtime_error);
    EXPECT_THROW(WriteFile(folder.Path(), "text"), std::runtime_error);
}

}  // namespace
