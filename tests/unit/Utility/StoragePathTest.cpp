#include "StoragePath.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <memory>

#include "InstallRoot.h"
#include "LogCapture.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(StoragePathInstance, IsNotThereBeforeItIsCreated) {
    EXPECT_EQ(CStoragePath::AcquireInstance(), nullptr);
    EXPECT_EQ(CStoragePath::GetInstanceRefCount(), 0U);
}

TEST(StoragePathInstance, IsSharedByASecondCreationUntilTwoReleases) {
    const LogCapture log;
    CStoragePath* first = nullptr;
    CStoragePath* second = nullptr;
    ASSERT_EQ(CStoragePath::CreateSingletonInstance(first, ""), kSuccess);
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(CStoragePath::GetInstanceRefCount(), 1U);
    EXPECT_EQ(CStoragePath::CreateSingletonInstance(second, ""), kSuccess);
    EXPECT_EQ(second, first);
    EXPECT_EQ(CStoragePath::GetInstanceRefCount(), 2U);

    CStoragePath::ReleaseInstance(first);
    EXPECT_EQ(CStoragePath::GetInstanceRefCount(), 1U);
    CStoragePath::ReleaseInstance(second);
    EXPECT_EQ(CStoragePath::GetInstanceRefCount(), 0U);
    EXPECT_EQ(CStoragePath::AcquireInstance(), nullptr);
    EXPECT_THAT(log.Lines(), IsEmpty());
}

TEST(StoragePathInstance, StaysWhenAnotherObjectIsReleased) {
    CStoragePath* instance = nullptr;
    ASSERT_EQ(CStoragePath::CreateSingletonInstance(instance, ""), kSuccess);
    ResultCode result = GLOBAL_ERROR_UNEXPECTED;
    CStoragePath::ReleaseInstance(std::make_unique<CStoragePath>(result, "").release());
    EXPECT_EQ(result, kSuccess);
    EXPECT_EQ(CStoragePath::GetInstanceRefCount(), 1U);
    CStoragePath::ReleaseInstance(instance);
}

class StoragePaths : public testing::Test {
protected:
    ResultCode m_result = GLOBAL_ERROR_UNEXPECTED;
    LogCapture m_log;
    const CStoragePath m_paths{m_result, "reserved"};
};

TEST_F(StoragePaths, AreBelowTheBuildsInstallationRoot) {
    EXPECT_STREQ(kInstallRoot, "/opt/velto/tunnelkeep");
    EXPECT_EQ(m_paths.GetInstallPath(), "/opt/velto/tunnelkeep/");
    EXPECT_EQ(m_paths.GetBinPath(), "/opt/velto/tunnelkeep/bin/");
    EXPECT_EQ(m_paths.GetFeedbackModuleDataPath(),
              "/opt/velto/tunnelkeep/CustomerExperienceFeedback/moduledata");
    EXPECT_THAT(m_log.Lines(), IsEmpty());
}

TEST_F(StoragePaths, OfProfilesTellTheManagementTunnelApart) {
    EXPECT_EQ(m_paths.GetProfilePath(1), "/opt/velto/tunnelkeep/profile/mgmttun");
    EXPECT_EQ(m_paths.GetProfilePath(0), "/opt/velto/tunnelkeep/profile");
    EXPECT_EQ(m_paths.GetProfilePath(2), "/opt/velto/tunnelkeep/profile");
    EXPECT_EQ(m_paths.GetProfilePath(-1), "/opt/velto/tunnelkeep/profile");
    EXPECT_EQ(m_paths.GetProfilePath(std::numeric_limits<std::int32_t>::min()),
              "/opt/velto/tunnelkeep/profile");
}

TEST_F(StoragePaths, OfProgramDataAreTheUsersOrTheSuites) {
    EXPECT_EQ(m_paths.GetProgramDataPath(false, ""), "/opt/velto/tunnelkeep/");
    EXPECT_EQ(m_paths.GetProgramDataPath(false, "no such user"), "/opt/velto/tunnelkeep/");
    EXPECT_EQ(m_paths.GetProgramDataPath(true, ""), m_paths.GetUserProgramDataPath(""));
    EXPECT_EQ(m_paths.GetProgramDataPath(true, "root"), m_paths.GetUserProgramDataPath("root"));
}

TEST_F(StoragePaths, OfTheUiLogAreNotSupported) {
    EXPECT_EQ(m_paths.GetUILogPath(), "");
    EXPECT_THAT(m_log.Lines(), ElementsAre("W Call unsupported on CSIDL value provided to "
                                           "CStoragePath::GetUILogPath returned an empty string."));
}

TEST_F(StoragePaths, OfTemporaryFilesFitFiveCharacters) {
    std::string path = "old";
    EXPECT_EQ(m_paths.GetTempPath(path, 5), kSuccess);
    EXPECT_EQ(path, "/tmp/");
}

TEST_F(StoragePaths, OfTemporaryFilesAreGivenEvenWhenTheyAreTooLong) {
    std::string path = "old";
    EXPECT_EQ(m_paths.GetTempPath(path, 4), 0xFE9D000CU);
    EXPECT_EQ(path, "/tmp/");
    EXPECT_EQ(m_paths.GetTempPath(path, 0), CSTORAGEPATH_ERROR_TEMPPATH_TOO_BIG);
}

TEST_F(StoragePaths, OfAnUnknownUserAreTheCurrentFolder) {
    EXPECT_EQ(m_paths.GetUserProgramDataPath("no such user"), ".");
    EXPECT_THAT(m_log.Lines(), ElementsAre("W Error retrieving user pswd struct."));
}

}  // namespace
