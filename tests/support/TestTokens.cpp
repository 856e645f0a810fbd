#include "TestTokens.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

TestTokens::TestTokens() {
    namespace fs = std::filesystem;
    const fs::path folder = m_folder.Path();
    fs::copy(TK_TEST_TOKEN_FILES "/tokens", folder / "tokens", fs::copy_options::recursive);
    const fs::path configuration = folder / "softhsm2.conf";
    std::ofstream(configuration) << "directories.tokendir = " << (folder / "tokens").string()
                                 << "\nlog.level = ERROR\n";
    setenv("SOFTHSM2_CONF", configuration.c_str(), 1);
    setenv("TK_TEST_TOKENS", folder.c_str(), 1);
    Insert({});
}

TestTokens::~TestTokens() = default;

void TestTokens::Insert(std::initializer_list<std::string> cards) const {
    std::string lines;
    for (const std::string& card : cards) {
        lines += card + "\n";
    }
    // Replaced as a whole: the module may read it meanwhile.
    const std::string path = m_folder.Path() + "/inserted";
    std::ofstream(path + ".new") << lines;
    std::filesystem::rename(path + ".new", path);
}

void TestTokens::SetWrongPins(const std::string& card, int count) const {
    std::ofstream(m_folder.Path() + "/wrong-" + card) << count;
}

TestTokens::Block::Block(const TestTokens& tokens, const std::string& call)
    : m_pipe(tokens.m_folder.Path() + "/" + call) {
    mkfifo(m_pipe.c_str(), S_IRUSR | S_IWUSR);
}

TestTokens::Block::~Block() {
    // Whoever waits for the pipe to be opened goes on as well.
    const int both = open(m_pipe.c_str(), O_RDWR | O_NONBLOCK | O_CLOEXEC);
    std::filesystem::remove(m_pipe);
    close(both);
    if (m_writing >= 0) {
        close(m_writing);
    }
}

bool TestTokens::Block::IsReached() {
    if (m_writing < 0) {
        m_writing = open(m_pipe.c_str(), O_WRONLY | O_NONBLOCK | O_CLOEXEC);
    }
    return m_writing >= 0;
}
