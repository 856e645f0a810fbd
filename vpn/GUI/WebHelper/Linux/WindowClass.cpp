#include "WindowClass.h"

#include <gdk/gdkwayland.h>

namespace {

// The name of the desktop entry, too.
constexpr char kWindowClass[] = "tkwebhelper";

// The compositor knows the window only while it is shown.
void onMap(GtkWidget* window) {
    GdkWindow* const surface = gtk_widget_get_window(window);
    if (GDK_IS_WAYLAND_WINDOW(surface)) {
        gdk_wayland_window_set_application_id(surface, kWindowClass);
    }
}

}  // namespace

void SetWindowClass(GtkWindow* window) {
    // The toolkit advises against it, because it takes the name from the program otherwise.
    G_GNUC_BEGIN_IGNORE_DEPRECATIONS
    gtk_window_set_wmclass(window, kWindowClass, kWindowClass);
    G_GNUC_END_IGNORE_DEPRECATIONS
    g_signal_connect(window, "map", G_CALLBACK(onMap), nullptr);
}
