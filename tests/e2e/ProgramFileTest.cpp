// What the built program exports and imports, and which functions its libraries find in it.

#include <cstdio>
#include <memory>
#include <set>
#include <sstream>

#include "HelperTest.h"
#include "TemporaryFolder.h"

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::Not;

/// The names of the program's dynamic symbols, without their versions.
std::set<std::string> DynamicSymbols(const std::string& selection) {
    const std::string command = "nm --dynamic --format=just-symbols --without-symbol-versions " +
                                selection + " " TKWEBHELPER_PATH;
    std::set<std::string> names;
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> output(popen(command.c_str(), "r"),
                                                                 pclose);
    for (char line[1024]; output && std::fgets(line, sizeof(line), output.get()) != nullptr;) {
        std::string name(line);
        name.resize(name.find_last_not_of('\n') + 1);
        names.insert(name);
    }
    return names;
}

}  // namespace

TEST(ProgramFile, ExportsTheTranslationFunctionsAndNothingElseOfOurs) {
    EXPECT_THAT(
        DynamicSymbols("--defined-only"),
        ElementsAre("_IO_stdin_used", "bind_textdomain_codeset", "bindtextdomain", "dcgettext",
                    "dcngettext", "dgettext", "dngettext", "gettext", "ngettext", "textdomain"));
}

TEST(ProgramFile, IsNotLinkedToTheCookieQuery) {
    const std::set<std::string> undefined = DynamicSymbols("--undefined-only");
    EXPECT_THAT(undefined, Contains("webkit_cookie_manager_set_accept_policy"));
    EXPECT_THAT(undefined, Not(Contains("webkit_cookie_manager_get_cookies")));
    EXPECT_THAT(undefined, Not(Contains("webkit_cookie_manager_get_cookies_finish")));
}

namespace {

class LibraryBindings : public HelperTest {
protected:
    /// Which of the program's functions the dynamic linker gives to the libraries, as "library
    /// function". The shortest of runs tells, when everything is bound at its start.
    std::set<std::string> Observe() {
        const TemporaryFolder folder;
        Launch({}, {{"LD_BIND_NOW", "1"},
                    {"LD_DEBUG", "bindings"},
                    {"LD_DEBUG_OUTPUT", folder.Path("linker")}});
        EXPECT_EQ(AwaitEnd(), "exited with status 1");
        std::istringstream lines(ReadFile(folder.Path("linker." + std::to_string(m_helper.Pid()))));
        const std::string target = "] to " TKWEBHELPER_PATH " [0]: normal symbol `";
        std::set<std::string> found;
        for (std::string line; std::getline(lines, line);) {
            const std::size_t position = line.find(target);
            if (position != std::string::npos) {
                const std::size_t symbol = position + target.size();
                found.insert(LibraryOf(line) + " " +
                             line.substr(symbol, line.find('\'', symbol) - symbol));
            }
        }
        return found;
    }

private:
    // "libglib-2.0.so.0" of "binding file /lib/libglib-2.0.so.0 [0] to ...".
    static std::string LibraryOf(const std::string& line) {
        const std::string path = line.substr(0, line.find(" ["));
        return path.substr(path.rfind('/') + 1);
    }
};

}  // namespace

TEST_F(LibraryBindings, TranslationsOfTheToolkitComeFromTheProgram) {
    // What calls dgettext in their sources is compiled into a call of dcgettext.
    EXPECT_THAT(Observe(), testing::IsSupersetOf(
                               {"libgtk-3.so.0 bindtextdomain", "libgtk-3.so.0 dcgettext",
                                "libglib-2.0.so.0 bindtextdomain", "libglib-2.0.so.0 dcgettext",
                                "libglib-2.0.so.0 dcngettext"}));
}
