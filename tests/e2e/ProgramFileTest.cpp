// What the built program exports and imports, which functions its libraries find in it, and how
// it is hardened.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <memory>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "HelperProgram.h"

namespace {

using testing::AllOf;
using testing::Contains;
using testing::ContainsRegex;
using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

using Lines = std::vector<std::string>;

/// What a tool prints about the program.
Lines LinesOf(const std::string& tool) {
    const std::string command = tool + " " + HelperPath();
    Lines lines;
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> output(popen(command.c_str(), "r"),
                                                                 pclose);
    for (char text[1024]; output && std::fgets(text, sizeof(text), output.get()) != nullptr;) {
        std::string line(text);
        line.resize(line.find_last_not_of('\n') + 1);
        lines.push_back(line);
    }
    return lines;
}

/// The names of the program's dynamic symbols, without their versions.
std::set<std::string> DynamicSymbols(const std::string& selection) {
    const Lines lines =
        LinesOf("nm --dynamic --format=just-symbols --without-symbol-versions " + selection);
    return {lines.begin(), lines.end()};
}

/// The lines of a listing in which a text stands.
Lines LinesWith(const std::string& text, const Lines& listing) {
    Lines found;
    for (const std::string& line : listing) {
        if (line.find(text) != std::string::npos) {
            found.push_back(line);
        }
    }
    return found;
}

Lines DynamicEntries(const std::string& tag) {
    return LinesWith("(" + tag + ")", LinesOf("readelf --wide --dynamic"));
}

Lines Segments(const std::string& type) {
    return LinesWith(" " + type + " ", LinesOf("readelf --wide --segments"));
}

/// The first instruction of a function.
std::string FirstInstruction(const std::string& function) {
    const Lines listing = LinesOf("objdump --no-show-raw-insn --disassemble=" + function);
    for (auto line = listing.begin(); line != listing.end(); ++line) {
        if (line->find("<" + function + ">:") != std::string::npos && ++line != listing.end()) {
            std::string address;
            std::string instruction;
            std::istringstream(*line) >> address >> instruction;
            return instruction;
        }
    }
    return "";
}

}  // namespace

TEST(ProgramFile, ExportsOnlyWhatReplacesFunctionsOfLibraries) {
    EXPECT_THAT(DynamicSymbols("--defined-only"),
                ElementsAre("_IO_stdin_used", "bind_textdomain_codeset", "bindtextdomain",
                            "dcgettext", "dcngettext", "dgettext", "dngettext",
                            "g_subprocess_launcher_spawnv", "gettext", "ngettext", "textdomain"));
}

TEST(ProgramFile, IsNotLinkedToTheCookieQuery) {
    const std::set<std::string> undefined = DynamicSymbols("--undefined-only");
    EXPECT_THAT(undefined, Contains("webkit_cookie_manager_set_accept_policy"));
    EXPECT_THAT(undefined, Not(Contains("webkit_cookie_manager_get_cookies")));
    EXPECT_THAT(undefined, Not(Contains("webkit_cookie_manager_get_cookies_finish")));
}

TEST(ProgramFile, IsLoadedAtAnAddressThatNobodyKnows) {
    EXPECT_THAT(LinesWith("Type: ", LinesOf("readelf --file-header")),
                ElementsAre(HasSubstr(" DYN ")));
    EXPECT_THAT(Segments("INTERP"), ElementsAre(HasSubstr(" R ")));
    EXPECT_THAT(DynamicEntries("FLAGS_1"), ElementsAre(HasSubstr(" PIE")));
}

TEST(ProgramFile, IsBoundBeforeItStartsAndThenReadOnly) {
    EXPECT_THAT(Segments("GNU_RELRO"), ElementsAre(HasSubstr(" R ")));
    EXPECT_THAT(DynamicEntries("FLAGS"), ElementsAre(HasSubstr(" BIND_NOW")));
    EXPECT_THAT(DynamicEntries("FLAGS_1"), ElementsAre(HasSubstr(" NOW ")));
}

TEST(ProgramFile, HasNoMemoryThatIsWritableAndExecutable) {
    EXPECT_THAT(Segments("GNU_STACK"), ElementsAre(HasSubstr(" RW ")));
    EXPECT_THAT(Segments("LOAD"), AllOf(Contains(HasSubstr(" R E ")), Each(Not(HasSubstr("WE")))));
}

TEST(ProgramFile, LooksForItsLibrariesWhereTheSystemKeepsThem) {
    EXPECT_THAT(DynamicEntries("NEEDED"), Contains(HasSubstr("[libc.so.6]")));
    EXPECT_THAT(DynamicEntries("RPATH"), IsEmpty());
    EXPECT_THAT(DynamicEntries("RUNPATH"), IsEmpty());
}

TEST(ProgramFile, GuardsItsStack) {
    EXPECT_THAT(DynamicSymbols("--undefined-only"), Contains("__stack_chk_fail"));
}

// Only an optimising compiler knows the sizes that are compared.
TEST(ProgramFile, ComparesSizesInTheFunctionsOfTheCLibraryWhenItIsARelease) {
    EXPECT_EQ(LinesWith("__vsnprintf_chk", LinesOf("nm --dynamic")).empty(), TK_IS_RELEASE == 0);
}

// Marks the places where an indirect call may arrive.
TEST(ProgramFile, MarksItsFunctionsAsTargetsOfIndirectCalls) {
    for (const char* const function :
         {"main", "bind_textdomain_codeset", "bindtextdomain", "dcgettext", "dcngettext",
          "dgettext", "dngettext", "g_subprocess_launcher_spawnv", "gettext", "ngettext",
          "textdomain"}) {
        EXPECT_EQ(FirstInstruction(function), "endbr64") << function;
    }
}

TEST(ProgramFile, CanReturnThroughAShadowStack) {
    EXPECT_THAT(LinesOf("readelf --wide --notes"), Contains(ContainsRegex("x86 feature: .*SHSTK")));
}
