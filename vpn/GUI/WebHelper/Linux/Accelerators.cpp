#include "Accelerators.h"

#include <webkit2/webkit2.h>

#include "Zoom.h"

namespace {

WebKitWebView* WebViewOf(GObject* window) {
    return WEBKIT_WEB_VIEW(gtk_bin_get_child(GTK_BIN(window)));
}

// Each action returns TRUE: the key is handled, and the page does not get it.

gboolean reloadCB(GtkAccelGroup* /*group*/, GObject* window) {
    webkit_web_view_reload(WebViewOf(window));
    return TRUE;
}

gboolean goBackCB(GtkAccelGroup* /*group*/, GObject* window) {
    WebKitWebView* const webView = WebViewOf(window);
    if (webkit_web_view_can_go_back(webView)) {
        webkit_web_view_go_back(webView);
    }
    return TRUE;
}

gboolean goForwardCB(GtkAccelGroup* /*group*/, GObject* window) {
    WebKitWebView* const webView = WebViewOf(window);
    if (webkit_web_view_can_go_forward(webView)) {
        webkit_web_view_go_forward(webView);
    }
    return TRUE;
}

gboolean zoomInCB(GtkAccelGroup* /*group*/, GObject* window) {
    ZoomIn(WebViewOf(window));
    return TRUE;
}

gboolean zoomOutCB(GtkAccelGroup* /*group*/, GObject* window) {
    ZoomOut(WebViewOf(window));
    return TRUE;
}

gboolean resetZoomCB(GtkAccelGroup* /*group*/, GObject* window) {
    ResetZoom(WebViewOf(window));
    return TRUE;
}

struct Accelerator {
    guint key;
    GdkModifierType modifier;
    gboolean (*action)(GtkAccelGroup*, GObject*);
};

constexpr auto kNoModifier = static_cast<GdkModifierType>(0);
constexpr Accelerator kAccelerators[] = {
    {GDK_KEY_r, GDK_CONTROL_MASK, reloadCB},
    {GDK_KEY_F5, kNoModifier, reloadCB},
    {GDK_KEY_Left, GDK_MOD1_MASK, goBackCB},
    {GDK_KEY_Right, GDK_MOD1_MASK, goForwardCB},
    {GDK_KEY_equal, GDK_CONTROL_MASK, zoomInCB},
    {GDK_KEY_plus, GDK_CONTROL_MASK, zoomInCB},
    {GDK_KEY_KP_Add, GDK_CONTROL_MASK, zoomInCB},
    {GDK_KEY_minus, GDK_CONTROL_MASK, zoomOutCB},
    {GDK_KEY_KP_Subtract, GDK_CONTROL_MASK, zoomOutCB},
    {GDK_KEY_0, GDK_CONTROL_MASK, resetZoomCB},
    {GDK_KEY_KP_0, GDK_CONTROL_MASK, resetZoomCB},
};

}  // namespace

void ConnectAccelerators(GtkAccelGroup* group) {
    for (const auto& [key, modifier, action] : kAccelerators) {
        gtk_accel_group_connect(group, key, modifier, GTK_ACCEL_VISIBLE,
                                g_cclosure_new(G_CALLBACK(action), nullptr, nullptr));
    }
}
