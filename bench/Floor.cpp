// The smallest program that shows a page with this engine: an application, a window, a view, a
// load. A program that starts later, or needs more memory, does so through its own work.
//
//   floor [--show] [URL]
//
// Commands on standard input: "load URL", "query URL" (load it, then ask for its cookies), "reset"
// (a new view), "quit". On standard output: "ready" for each view, "finished" for each load and
// "cookies" for each answer.

#include <gtk/gtk.h>
#include <webkit2/webkit2.h>

#include <iostream>
#include <string>

namespace {

constexpr int kWidth = 1000;
constexpr int kHeight = 600;

class Floor {
public:
    Floor(bool show, std::string url) : m_show(show), m_url(std::move(url)) {}

    int Run() {
        m_application = gtk_application_new(nullptr, G_APPLICATION_NON_UNIQUE);
        g_signal_connect(m_application, "activate", G_CALLBACK(activateCB), this);
        const int status = g_application_run(G_APPLICATION(m_application), 0, nullptr);
        g_object_unref(m_application);
        return status;
    }

private:
    static void Say(const char* line) { std::cout << line << std::endl; }

    static void activateCB(GtkApplication* application, Floor* self) {
        self->m_window = gtk_application_window_new(application);
        gtk_window_set_default_size(GTK_WINDOW(self->m_window), kWidth, kHeight);
        self->m_context = webkit_web_context_new();
        self->MakeView();
        g_io_add_watch(g_io_channel_unix_new(STDIN_FILENO),
                       static_cast<GIOCondition>(G_IO_IN | G_IO_HUP), commandCB, self);
        if (!self->m_url.empty()) {
            self->Load(self->m_url);
        }
        if (self->m_show) {
            gtk_widget_show_all(self->m_window);
        }
    }

    void MakeView() {
        GtkWidget* const view = webkit_web_view_new_with_context(m_context);
        m_view = WEBKIT_WEB_VIEW(view);
        webkit_settings_set_hardware_acceleration_policy(webkit_web_view_get_settings(m_view),
                                                         WEBKIT_HARDWARE_ACCELERATION_POLICY_NEVER);
        g_signal_connect(view, "load-changed", G_CALLBACK(loadChangedCB), this);
        gtk_container_add(GTK_CONTAINER(m_window), view);
        Say("ready");
    }

    void Load(const std::string& url) {
        m_url = url;
        webkit_web_view_load_uri(m_view, url.c_str());
    }

    static void loadChangedCB(WebKitWebView* /*view*/, WebKitLoadEvent event, Floor* self) {
        if (event != WEBKIT_LOAD_FINISHED) {
            return;
        }
        Say("finished");
        if (self->m_asksForCookies) {
            webkit_cookie_manager_get_cookies(
                webkit_web_context_get_cookie_manager(self->m_context), self->m_url.c_str(),
                nullptr, cookiesCB, nullptr);
        }
    }

    static void cookiesCB(GObject* manager, GAsyncResult* result, gpointer /*self*/) {
        GList* const cookies = webkit_cookie_manager_get_cookies_finish(
            WEBKIT_COOKIE_MANAGER(manager), result, nullptr);
        g_list_free_full(
            cookies, [](gpointer cookie) { soup_cookie_free(static_cast<SoupCookie*>(cookie)); });
        Say("cookies");
    }

    static gboolean commandCB(GIOChannel* /*channel*/, GIOCondition /*condition*/, gpointer self) {
        std::string command;
        std::string url;
        // The writer at the other end writes whole lines, one at a time.
        if (!(std::cin >> command)) {
            command = "quit";
        }
        auto* const floor = static_cast<Floor*>(self);
        floor->m_asksForCookies = command == "query";
        if (command == "quit") {
            g_application_quit(G_APPLICATION(floor->m_application));
        } else if (command == "reset") {
            gtk_container_remove(GTK_CONTAINER(floor->m_window), GTK_WIDGET(floor->m_view));
            floor->MakeView();
        } else if (std::cin >> url) {
            floor->Load(url);
        }
        return G_SOURCE_CONTINUE;
    }

    const bool m_show;
    std::string m_url;
    bool m_asksForCookies = false;
    GtkApplication* m_application = nullptr;
    GtkWidget* m_window = nullptr;
    WebKitWebContext* m_context = nullptr;
    WebKitWebView* m_view = nullptr;
};

}  // namespace

int main(int argc, char** argv) {
    const bool show = argc > 1 && std::string(argv[1]) == "--show";
    const int urlIndex = show ? 2 : 1;
    return Floor(show, argc > urlIndex ? argv[urlIndex] : "").Run();
}
