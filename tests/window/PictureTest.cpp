#include "PictureTest.h"

void PictureTest::ShowBody(const std::string& path, const std::string& body) {
    ServeBody(path, body);
    ShowPage(path);
}

void PictureTest::ServeBody(const std::string& path, const std::string& body) {
    m_server.Serve(path, {200,
                          "<!DOCTYPE html><meta charset='utf-8'>"
                          "<style>html, body { margin: 0; height: 100% }</style>" +
                              body});
}

void PictureTest::ExpectWindow(const std::string& name, const Screenshot& expected) const {
    EXPECT_TRUE(RunMainLoopUntil([&] { return WindowPicture() == expected; }));
    Keep(name, WindowPicture());
}

void PictureTest::ExpectScreen(const std::string& name, const Screenshot& expected) const {
    EXPECT_TRUE(RunMainLoopUntil([&] { return ScreenPicture() == expected; }));
    Keep(name, ScreenPicture());
}

void PictureTest::Keep(const std::string& name, const Screenshot& picture) {
    const testing::TestInfo& test = *testing::UnitTest::GetInstance()->current_test_info();
    EXPECT_TRUE(picture.Keep(std::string(test.test_suite_name()) + "." + test.name() + "." + name));
}

void PictureTest::Reset() {
    const std::size_t before = Results().size();
    Send(Operation::OfType(BrowserOperationType::reset));
    ASSERT_TRUE(WaitForResults(before + 1));
}
