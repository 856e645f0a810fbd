#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <clocale>
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "Catalogs.h"
#include "MsgCatalog.h"
#include "WindowTest.h"

namespace {

namespace fs = std::filesystem;
using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::EndsWith;
using testing::Field;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

constexpr char kInstallation[] = "/opt/velto/tunnelkeep";

class WindowConstructionTest : public WindowTest {
protected:
    WindowConstructionTest() { fs::remove_all("/opt/velto"); }
    ~WindowConstructionTest() override { fs::remove_all("/opt/velto"); }

    static fs::path DataDirectory() { return fs::path(getpwuid(geteuid())->pw_dir) / ".velto"; }
    static fs::path CookieFile() { return DataDirectory() / "tkwebhelper.cookies.sqlite"; }

    // A cookie that a store keeps and one that ends with the process.
    void VisitPageThatSetsCookies() {
        m_server.Handle("/set", [](HttpExchange& exchange) {
            exchange.Respond({200,
                              "hello",
                              "text/html",
                              {{"Set-Cookie", "kept=1; Max-Age=3600"}, {"Set-Cookie", "gone=1"}}});
        });
        const std::string url = m_server.Url("/set");
        const std::size_t before = Results().size();
        Send(Operation::Browse(url, url));
        ASSERT_TRUE(WaitForResults(before + 1));
    }

    std::string CookiesSentTo(const std::string& path) {
        m_server.ServePage(path, "hello");
        Send(Operation::Browse(m_server.Url(path), m_server.Url(path)));
        EXPECT_TRUE(m_loads.WaitFor("FINISHED " + m_server.Url(path)));
        return m_server.Requests().back().Header("Cookie");
    }

    bool PropertyOfView(const char* name) const {
        gboolean value = TRUE;
        g_object_get(webkit_web_view_get_settings(View()), name, &value, nullptr);
        return value != FALSE;
    }
};

}  // namespace

TEST_F(WindowConstructionTest, IsHiddenAndSilent) {
    Open();
    RunPendingEvents();
    EXPECT_FALSE(gtk_widget_get_visible(GTK_WIDGET(Window())));
    EXPECT_THAT(Results(), IsEmpty());
    EXPECT_THAT(LogLines(), Not(Contains(StartsWith("W"))));
}

TEST_F(WindowConstructionTest, IsOneThousandBySixHundredInTheMiddleOfTheScreen) {
    Open();
    int width = 0;
    int height = 0;
    gtk_window_get_default_size(Window(), &width, &height);
    EXPECT_EQ(width, 1000);
    EXPECT_EQ(height, 600);
    m_server.ServePage("/page", "hello");
    ShowPage("/page");
    EXPECT_TRUE(RunMainLoopUntil([&] {
        return m_screen.Geometry(OnScreen()) == XGeometry{140, 100, 1000, 600};
    }));
}

TEST_F(WindowConstructionTest, IsTheOnlyWindow) {
    Open();
    m_server.ServePage("/page", "hello");
    ShowPage("/page");
    EXPECT_THAT(m_screen.TopLevels(), ElementsAre(OnScreen()));
}

TEST_F(WindowConstructionTest, HasTheInstalledIcon) {
    const fs::path icon = fs::path(kInstallation) / "resources/vpnui128.png";
    fs::create_directories(icon.parent_path());
    fs::copy(TK_TEST_ICON, icon);
    Open();
    GdkPixbuf* const picture = gtk_window_get_icon(Window());
    ASSERT_NE(picture, nullptr);
    EXPECT_EQ(gdk_pixbuf_get_width(picture), 128);
    EXPECT_EQ(gdk_pixbuf_get_height(picture), 128);
}

TEST_F(WindowConstructionTest, DoesWithoutAnIcon) {
    Open();
    EXPECT_EQ(gtk_window_get_icon(Window()), nullptr);
    EXPECT_THAT(LogLines(), Not(Contains(testing::HasSubstr("icon"))));
}

// Today's engine has neither any more and says so whatever it is told; older ones had both.
TEST_F(WindowConstructionTest, RunsNoPluginsAndNoJava) {
    Open();
    EXPECT_FALSE(PropertyOfView("enable-plugins"));
    EXPECT_FALSE(PropertyOfView("enable-java"));
}

TEST_F(WindowConstructionTest, IsNoDropTarget) {
    // The engine's view is one when it is new.
    GtkWidget* const plain = webkit_web_view_new();
    g_object_ref_sink(plain);
    EXPECT_NE(gtk_drag_dest_get_target_list(plain), nullptr);
    gtk_widget_destroy(plain);
    g_object_unref(plain);

    Open();
    EXPECT_EQ(gtk_drag_dest_get_target_list(GTK_WIDGET(View())), nullptr);
}

TEST_F(WindowConstructionTest, KeepsCookiesInAFileBelowTheHome) {
    Open();
    VisitPageThatSetsCookies();
    // The engine writes the file in its own time.
    EXPECT_TRUE(RunMainLoopUntil([&] { return fs::exists(CookieFile()); }));
    EXPECT_THAT(LogLines(), Not(Contains(StartsWith("W"))));
}

TEST_F(WindowConstructionTest, MakesTheDataDirectoryAsTheUmaskAllows) {
    const mode_t before = umask(027);
    Open();
    umask(before);
    struct stat status {};
    ASSERT_EQ(stat(DataDirectory().c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777U, 0750U);
}

TEST_F(WindowConstructionTest, ReturnsStoredCookiesOnTheVeryFirstPage) {
    Open();
    VisitPageThatSetsCookies();
    EXPECT_EQ(CookiesSentTo("/same"), "kept=1; gone=1");
    Shut();
    Open();
    EXPECT_EQ(CookiesSentTo("/next"), "kept=1");
}

TEST_F(WindowConstructionTest, RefusesCookiesOfThirdParties) {
    Open();
    m_server.Serve("/picture", {200, "", "image/png", {{"Set-Cookie", "third=1"}}});
    // By another name the same server is another party.
    m_server.ServePage("/page", "<img src='" + m_server.Url("/picture", "localhost") + "'>");
    Send(Operation::Browse(m_server.Url("/page"), "never"));
    ASSERT_TRUE(m_loads.WaitFor("FINISHED " + m_server.Url("/page")));
    ASSERT_TRUE(WaitForRequest("/picture"));
    m_server.ServePage("/next", "hello");
    const std::string next = m_server.Url("/next", "localhost");
    Send(Operation::Browse(next, next));
    ASSERT_TRUE(WaitForResults(1));
    EXPECT_EQ(m_server.Requests().back().Header("Cookie"), "");
}

TEST_F(WindowConstructionTest, BrowsesWithoutADataDirectory) {
    // Nobody, root included, can make a directory where a file is.
    std::ofstream(DataDirectory()) << "in the way";
    Open();
    EXPECT_THAT(
        m_log.Records(),
        Contains(Field(&CapturedRecord::text, AllOf(StartsWith("Function: init\n"),
                                                    EndsWith("\nUnable to create data directory " +
                                                             DataDirectory().string() + "/")))));
    VisitPageThatSetsCookies();
    EXPECT_EQ(CookiesSentTo("/same"), "kept=1; gone=1");
    EXPECT_THAT(Results(), ElementsAre("success", "success"));
    Shut();
    Open();
    EXPECT_EQ(CookiesSentTo("/next"), "");
    EXPECT_TRUE(fs::is_regular_file(DataDirectory()));
}

TEST_F(WindowConstructionTest, HasAnEnglishTitle) {
    Open();
    EXPECT_STREQ(gtk_window_get_title(Window()), "Velto Tunnelkeep Login");
}

TEST_F(WindowConstructionTest, HasATranslatedTitle) {
    CompileCatalog(
        CatalogPath(std::string(kInstallation) + "/l10n", "C.UTF-8", "Tunnelkeep"),
        CatalogSource("UTF-8",
                      "msgid \"Velto Tunnelkeep Login\"\nmsgstr \"Anmeldung über Velto\""));
    setenv("LC_ALL", "C.UTF-8", 1);
    std::setlocale(LC_ALL, "");
    MsgCatalog::unloadCatalog();
    MsgCatalog::resetCatalog();
    Open();
    EXPECT_STREQ(gtk_window_get_title(Window()), "Anmeldung über Velto");
    m_server.ServePage("/page", "hello");
    ShowPage("/page");
    EXPECT_EQ(m_screen.Title(OnScreen()), "Anmeldung über Velto");
    unsetenv("LC_ALL");
    std::setlocale(LC_ALL, "C");
    MsgCatalog::unloadCatalog();
}
