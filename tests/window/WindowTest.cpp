#include "WindowTest.h"

#include <pwd.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>

namespace {

std::string TextOf(const CBrowserResult& result) {
    const std::string name = ResultTypeNames.at(result.GetResultType());
    const std::string value = result.GetCookieValue();
    return value.empty() ? name : name + " " + value;
}

// Cookies of an earlier case in the same process are not for this one.
void EmptyDataDirectory() {
    std::filesystem::remove_all(std::string(getpwuid(geteuid())->pw_dir) + "/.velto");
}

// The program's start makes it; catalogues are looked for below its folders.
CInstanceSmartPtr<StoragePath> MakeStoragePath() {
    CStoragePath* instance = nullptr;
    EXPECT_EQ(CStoragePath::CreateSingletonInstance(instance, ""), kSuccess);
    return CInstanceSmartPtr<StoragePath>(instance);
}

}  // namespace

WindowTest::WindowTest() : m_screen(getenv("DISPLAY")), m_storagePath(MakeStoragePath()) {
    EmptyDataDirectory();
}

WindowTest::~WindowTest() {
    Shut();
}

void WindowTest::Open() {
    m_application.reset(gtk_application_new(nullptr, G_APPLICATION_DEFAULT_FLAGS));
    g_application_register(G_APPLICATION(m_application.get()), nullptr, nullptr);
    m_browser =
        std::make_unique<GtkBrowserWindow>(m_application.get(), [this](CBrowserResult& result) {
            m_results.push_back(TextOf(result));
            m_reaction();
        });
}

void WindowTest::Shut() {
    if (!m_browser) {
        return;
    }
    // An operation that is still queued needs the window.
    RunPendingEvents();
    GtkWidget* const window = GTK_WIDGET(Window());
    // Kept for good: the engine crashes when a context ends before a cookie query is answered.
    // The program never gets there, since its main loop has ended by then.
    g_object_ref(webkit_web_view_get_context(View()));
    m_browser.reset();
    gtk_widget_destroy(window);
    m_application.reset();
    RunPendingEvents();
}

GtkWindow* WindowTest::Window() const {
    return GTK_WINDOW(gtk_application_get_windows(m_application.get())->data);
}

WebKitWebView* WindowTest::View() const {
    return WEBKIT_WEB_VIEW(gtk_bin_get_child(GTK_BIN(Window())));
}

XWindow WindowTest::OnScreen() const {
    return m_screen.FindByTitle(gtk_window_get_title(Window())).value_or(0);
}

bool WindowTest::IsShown() const {
    return m_screen.IsMapped(OnScreen());
}

bool WindowTest::WaitUntilShown() const {
    return RunMainLoopUntil([this] { return IsShown(); });
}

bool WindowTest::WaitUntilHidden() const {
    return RunMainLoopUntil([this] { return !IsShown(); });
}

bool WindowTest::WaitForResults(std::size_t count) const {
    return RunMainLoopUntil([&] { return m_results.size() >= count; });
}

bool WindowTest::WaitForRequest(const std::string& path, std::size_t count) const {
    return RunMainLoopUntil([&] { return m_server.CountRequests(path) >= count; });
}

void WindowTest::ShowPage(const std::string& path) {
    Send(Operation::Browse(m_server.Url(path), "never").Shown());
    ASSERT_TRUE(m_loads.WaitFor("FINISHED " + m_server.Url(path)));
    ASSERT_TRUE(WaitUntilShown());
}

void WindowTest::FocusWindow() {
    m_screen.Focus(OnScreen());
    ASSERT_TRUE(RunMainLoopUntil([&] { return gtk_window_has_toplevel_focus(Window()); }));
}

void WindowTest::CloseWindow() {
    bool seen = false;
    const gulong handler = g_signal_connect_swapped(
        Window(), "event", G_CALLBACK(+[](bool* flag, GdkEvent* event) -> gboolean {
            *flag = *flag || event->type == GDK_DELETE;
            return FALSE;
        }),
        &seen);
    m_screen.Close(OnScreen());
    EXPECT_TRUE(RunMainLoopUntil([&] { return seen; }));
    g_signal_handler_disconnect(Window(), handler);
}

void WindowTest::AskToClose() {
    gboolean isKept = FALSE;
    GdkEvent* const event = gdk_event_new(GDK_DELETE);
    g_signal_emit_by_name(Window(), "delete-event", event, &isKept);
    gdk_event_free(event);
    EXPECT_TRUE(isKept);
}

void WindowTest::OutlastOneSecondTimeout() {
    // A source of whole seconds can be up to one second late.
    constexpr guint kMilliseconds = 2500;
    bool over = false;
    g_timeout_add(
        kMilliseconds,
        [](gpointer flag) -> gboolean {
            *static_cast<bool*>(flag) = true;
            return G_SOURCE_REMOVE;
        },
        &over);
    ASSERT_TRUE(RunMainLoopUntil([&] { return over; }));
}
