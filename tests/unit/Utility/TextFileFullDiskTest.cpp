#include <fcntl.h>
#include <gmock/gmock.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <string>

#include "FullDisk.h"
#include "LogCapture.h"
#include "TemporaryFolder.h"
#include "UniqueFd.h"
#include "sysutils.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// A disk of 64 KiB, which is emptied again.
class FullDisk : public testing::Test {
protected:
    ~FullDisk() override {
        std::filesystem::remove(m_file);
        std::filesystem::remove(m_filler);
    }

    void FillDisk() const {
        const std::string block(4096, 'x');
        const CUniqueFd filler(open(m_filler.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600));
        while (write(filler.Get(), block.data(), block.size()) > 0) {
        }
        EXPECT_EQ(errno, ENOSPC);
    }

    const std::string m_file = std::string(kSmallDisk) + "/file";
    const std::string m_filler = std::string(kSmallDisk) + "/filler";
    LogCapture m_log;
};

TEST_F(FullDisk, FailsARewrite) {
    WriteFile(m_file, "");
    FillDisk();
    EXPECT_FALSE(SetTextFileContents(m_file, "text"));
    EXPECT_THAT(m_log.Lines(), ElementsAre("E Failed to update file " + m_file));
}

TEST_F(FullDisk, FailsARewriteLargerThanAnyBuffer) {
    EXPECT_FALSE(SetTextFileContents(m_file, std::string(1 << 20, 'x')));
    EXPECT_THAT(m_log.Lines(), ElementsAre("E Failed to update file " + m_file));
}

TEST_F(FullDisk, LeavesRoomForEmptyContents) {
    WriteFile(m_file, "text");
    FillDisk();
    EXPECT_TRUE(SetTextFileContents(m_file, ""));
    EXPECT_THAT(m_log.Lines(), IsEmpty());
}

TEST_F(FullDisk, FailsAnAppendedLine) {
    WriteFile(m_file, "");
    FillDisk();
    EXPECT_FALSE(AppendLineToFile(m_file, "line"));
    EXPECT_THAT(m_log.Lines(), ElementsAre("E Failed to append to file " + m_file));
}

TEST_F(FullDisk, FailsAnInsertionThatDoesNotFit) {
    WriteFile(m_file, "line\n");
    FillDisk();
    EXPECT_FALSE(insertIntoFilePreMatchingLine(m_file, std::string(70000, 'x'), "line"));
    EXPECT_THAT(m_log.Lines(), ElementsAre("E Failed to update file " + m_file,
                                           "E Failed to update file " + m_file));
}

}  // namespace
