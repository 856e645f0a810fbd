// Texts of the toolkit and the engine, which the program translates too.

#include <set>
#include <sstream>

#include "Catalogs.h"
#include "HelperProgram.h"
#include "HelperTest.h"
#include "TemporaryFolder.h"

namespace {

class LibraryTranslations : public HelperTest {
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
        const std::string target = "] to " + HelperPath() + " [0]: normal symbol `";
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

    /// Shows a page that is one button for choosing a file, and waits until it can be clicked.
    XWindow ShowFileButton() {
        m_server.ServePage("/page",
                           "<input type=file style='position:fixed;inset:0;width:100%'>"
                           "<script>requestAnimationFrame(() => fetch('/laid-out'))</script>");
        Send(OperationText({{"operation", "browse"},
                            {"show", "true"},
                            {"url", m_server.Url("/page")},
                            {"final_url", m_server.Url("/elsewhere")}}));
        const XWindow window = AwaitWindow();
        EXPECT_TRUE(m_server.WaitForRequest("/laid-out"));
        return window;
    }

private:
    // "libglib-2.0.so.0" of "binding file /lib/libglib-2.0.so.0 [0] to ...".
    static std::string LibraryOf(const std::string& line) {
        const std::string path = line.substr(0, line.find(" ["));
        return path.substr(path.rfind('/') + 1);
    }
};

}  // namespace

TEST_F(LibraryTranslations, TheToolkitsFunctionsAreTheProgramsOwn) {
    // What calls dgettext in their sources is compiled into a call of dcgettext.
    EXPECT_THAT(Observe(), testing::IsSupersetOf(
                               {"libgtk-3.so.0 bindtextdomain", "libgtk-3.so.0 dcgettext",
                                "libglib-2.0.so.0 bindtextdomain", "libglib-2.0.so.0 dcgettext",
                                "libglib-2.0.so.0 dcngettext"}));
}

TEST_F(LibraryTranslations, ATextOfTheEngineIsLookedUpByTheProgram) {
    // Only the program looks for a territory in lower case; the C library would find nothing.
    CompileCatalog(
        CatalogPath("/usr/share/locale", "de-de", "WebKitGTK-" + EngineApi()),
        CatalogSource("utf-8", "msgid \"Select File\"\nmsgstr \"Eine Datei w\xC3\xA4hlen\""));
    // GLib translates its callers' texts only for a program that is itself translated.
    CompileCatalog(CatalogPath("/opt/velto/tunnelkeep/l10n", "de-de", "tkdownloader-gtk"),
                   CatalogSource("utf-8", ""));
    UseTestLocales();
    ASSERT_NO_FATAL_FAILURE(LaunchAndAwaitReady({{"LC_ALL", "de_DE.UTF-8"}}));
    const XWindow window = ShowFileButton();
    m_screen.Click(window, 100, 100);
    EXPECT_TRUE(m_screen.WaitUntil(
        [&] { return m_screen.FindByTitle("Eine Datei w\xC3\xA4hlen").has_value(); }));
}
