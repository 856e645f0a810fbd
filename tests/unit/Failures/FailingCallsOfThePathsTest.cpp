#include <gmock/gmock.h>
#include <nss.h>
#include <pwd.h>
#include <unistd.h>

#include <filesystem>

#include "DirectoryPath.h"
#include "EachCall.h"
#include "SparedLog.h"
#include "StoragePath.h"
#include "TemporaryFolder.h"

namespace {

using testing::ElementsAre;
using testing::Ge;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr ResultCode kNoMemory = 0xFE000004;

/// The singleton is made, held once more and given back.
bool UseSingleton(Call kind, std::size_t number) {
    const SparedLog log;
    const FailingCall failing(kind, number);
    CStoragePath* instance = nullptr;
    const ResultCode result = CStoragePath::CreateSingletonInstance(instance, "");
    CStoragePath* const again = CStoragePath::AcquireInstance();
    EXPECT_EQ(again, instance);
    CStoragePath::ReleaseInstance(again);
    CStoragePath::ReleaseInstance(instance);
    const bool hasFailed = FailingCall::HasFailed();

    const SparedCalls spared;
    EXPECT_EQ(result, hasFailed ? kNoMemory : kSuccess);
    EXPECT_EQ(CStoragePath::GetInstanceRefCount(), 0U);
    if (hasFailed) {
        EXPECT_EQ(instance, nullptr);
        EXPECT_THAT(log.Lines(),
                    ElementsAre(HasSubstr("Invoked Function: CStoragePath Return Code: -33554428 "
                                          "(0xFE000004) Description: "
                                          "GLOBAL_ERROR_MEMALLOC_FAILED")));
    } else {
        EXPECT_THAT(log.Lines(), IsEmpty());
    }
    return hasFailed;
}

TEST(FailingCallsOfTheStoragePath, EveryAllocationOfTheSingleton) {
    EXPECT_THAT(FailEachCall(Call::Allocation, UseSingleton), Ge(2U));
}

bool LookUpHome(Call kind, std::size_t number) {
    const SparedLog log;
    ResultCode result = kSuccess;
    const CStoragePath storagePath(result, "");
    std::string home;
    const bool hasFailed =
        WhileFailing(kind, number, [&] { home = storagePath.GetUserProgramDataPath(""); });
    if (home == ".") {
        EXPECT_TRUE(hasFailed);
        EXPECT_THAT(log.Lines(), ElementsAre(HasSubstr("Error retrieving user pswd struct.")));
    } else {
        // The C library gets along without some of its own blocks.
        EXPECT_EQ(home, std::string(getpwuid(getuid())->pw_dir) + "/");
        EXPECT_THAT(log.Lines(), IsEmpty());
    }
    return hasFailed;
}

TEST(FailingCallsOfTheStoragePath, EveryAllocationOfLookingTheHomeUp) {
    // Another source of users would be asked when the first fails, and may name another home.
    ASSERT_EQ(__nss_configure_lookup("passwd", "files"), 0);
    EXPECT_THAT(FailEachCall(Call::Allocation, LookUpHome), Ge(1U));
}

/// A path that there is no memory for is empty.
template <class Getter>
void ExpectNoPathWithoutMemory(Getter getter) {
    ResultCode result = kSuccess;
    const CStoragePath storagePath(result, "");
    const SparedLog log;
    std::string path = "what was there before";
    {
        const FailingCall failing(Call::Allocation, 1);
        path = getter(storagePath);
        EXPECT_TRUE(FailingCall::HasFailed());
    }
    EXPECT_EQ(path, "");
    EXPECT_THAT(log.Lines(),
                ElementsAre(HasSubstr("Caught storage path exception - std::bad_alloc")));
}

TEST(FailingCallsOfTheStoragePath, TheAllocationOfEachPath) {
    ExpectNoPathWithoutMemory([](const auto& paths) { return paths.GetInstallPath(); });
    ExpectNoPathWithoutMemory([](const auto& paths) { return paths.GetBinPath(); });
    ExpectNoPathWithoutMemory([](const auto& paths) { return paths.GetFeedbackModuleDataPath(); });
    ExpectNoPathWithoutMemory([](const auto& paths) { return paths.GetProfilePath(1); });
    const std::string noUser;
    ExpectNoPathWithoutMemory(
        [&](const auto& paths) { return paths.GetProgramDataPath(false, noUser); });
}

/// Every directory is missing, and each run has a folder of its own.
bool MakeDirectories(Call kind, std::size_t number) {
    const TemporaryFolder folder;
    const std::string path = folder.Path("one-of-the-directories/another-one/the-last-one");
    bool made = false;
    const bool hasFailed =
        WhileFailing(kind, number, [&] { made = MakeDirectoryPath(path.c_str()); });
    EXPECT_EQ(made, std::filesystem::is_directory(path));
    EXPECT_TRUE(made || hasFailed);
    return hasFailed;
}

TEST(FailingCallsOfADirectoryPath, EveryAllocation) {
    EXPECT_THAT(FailEachCall(Call::Allocation, MakeDirectories), Ge(2U));
}

TEST(FailingCallsOfADirectoryPath, EveryStatus) {
    EXPECT_THAT(FailEachCall(Call::Status, MakeDirectories), Ge(5U));
}

bool MakeDirectoryWhereAFileIs(Call kind, std::size_t number) {
    const TemporaryFolder folder;
    const std::string path = folder.Path("file");
    WriteFile(path, "in the way");
    return WhileFailing(kind, number, [&] { EXPECT_FALSE(MakeDirectoryPath(path.c_str())); });
}

TEST(FailingCallsOfADirectoryPath, EveryStatusWithAFileInTheWay) {
    EXPECT_THAT(FailEachCall(Call::Status, MakeDirectoryWhereAFileIs), Ge(2U));
}

TEST(FailingCallsOfADirectoryPath, EveryDirectoryMade) {
    EXPECT_THAT(FailEachCall(Call::MakeDirectory, MakeDirectories), Ge(3U));
}

}  // namespace
