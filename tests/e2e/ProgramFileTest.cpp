// What the built program exports and imports, and which functions its libraries find in it.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <memory>
#include <set>
#include <string>

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
