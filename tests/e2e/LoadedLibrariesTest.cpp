// Which libraries the running program and the engine's processes have loaded, their plugins' own
// included, which no listing of links shows.

#include <filesystem>
#include <fstream>
#include <set>
#include <string>

#include "HelperProgram.h"
#include "HelperTest.h"
#include "ProcessFamily.h"
#include "VirtualDisplay.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

/// The files mapped into a process whose names begin with this.
std::set<std::string> MappedFiles(pid_t process, const std::string& beginning) {
    std::set<std::string> names;
    std::ifstream maps("/proc/" + std::to_string(process) + "/maps");
    for (std::string line; std::getline(maps, line);) {
        const std::string name = std::filesystem::path(line).filename();
        if (name.compare(0, beginning.size(), beginning) == 0) {
            names.insert(name.substr(0, name.find(".so.") + std::string(".so.N").size()));
        }
    }
    return names;
}

class LoadedLibraries : public HelperTest {
protected:
    /// The files of this beginning in the program and in its children.
    [[nodiscard]] std::set<std::string> Libraries(const std::string& beginning) const {
        std::set<std::string> names = MappedFiles(m_helper.Pid(), beginning);
        for (const pid_t child : Descendants(m_helper.Pid())) {
            names.merge(MappedFiles(child, beginning));
        }
        return names;
    }

    /// The files of a graphics driver in the program itself: what finds it through one library or
    /// the other, and its compiler.
    [[nodiscard]] std::set<std::string> GraphicsDriver() const {
        std::set<std::string> names;
        for (const char* beginning : {"libEGL_", "libGLX_", "libLLVM"}) {
            names.merge(MappedFiles(m_helper.Pid(), beginning));
        }
        return names;
    }
};

}  // namespace

// The engine gives up in a process that holds both generations of the library.
TEST_F(LoadedLibraries, HaveOneGenerationOfTheHttpLibrary) {
    ASSERT_NO_FATAL_FAILURE(LaunchAndAwaitReady());
    EXPECT_THAT(Libraries("libsoup-"), ElementsAre(SoupLibrary()));
    // Media make the engine load whatever can play them.
    m_server.ServePage("/media", "<video src='/film.webm' autoplay></video><audio src='/a.ogg'>");
    BrowseTo("/media");
    EXPECT_EQ(NextResult(), "success");
    EXPECT_THAT(Libraries("libsoup-"), ElementsAre(SoupLibrary()));
    EXPECT_EQ(Terminate(), "exited with status 0");
}

// It takes two fifths of the start and of the memory, and a broken one could end the program.
TEST_F(LoadedLibraries, HaveNoGraphicsDriverInTheProgram) {
    // The toolkit leaves what it learns from the driver on the display, for all that come after.
    const VirtualDisplay untouched;
    m_server.ServePage("/page", "page");
    ASSERT_NO_FATAL_FAILURE(LaunchAndAwaitReady());
    EXPECT_THAT(GraphicsDriver(), IsEmpty());
    BrowseTo("/page");
    EXPECT_EQ(NextResult(), "success");
    EXPECT_THAT(GraphicsDriver(), IsEmpty());
    EXPECT_EQ(Terminate(), "exited with status 0");
}

TEST_F(LoadedLibraries, HaveTheGraphicsDriverWhereTheEnvironmentWantsIt) {
    ASSERT_NO_FATAL_FAILURE(LaunchAndAwaitReady({{"WEBKIT_DISABLE_DMABUF_RENDERER", "0"}}));
    EXPECT_THAT(GraphicsDriver(), Not(IsEmpty()));
}
