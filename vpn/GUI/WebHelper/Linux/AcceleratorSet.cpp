#include "AcceleratorSet.h"

namespace {

constexpr double kZoomFactor = 1.1;
constexpr double kHighestZoom = 5.0;
constexpr double kLowestZoom = 0.25;

// The result of each action: the key is handled, the page does not see it.

gboolean reloadCB(WebKitWebView* webView) {
    webkit_web_view_reload(webView);
    return TRUE;
}

gboolean goBackCB(WebKitWebView* webView) {
    if (webkit_web_view_can_go_back(webView)) {
        webkit_web_view_go_back(webView);
    }
    return TRUE;
}

// A step that would leave the range is dropped whole, not clamped, so that the levels reached are
// always powers of the factor and the way back leads over the same ones.

gboolean zoomInCB(WebKitWebView* webView) {
    const double level = webkit_web_view_get_zoom_level(webView) * kZoomFactor;
    if (level <= kHighestZoom) {
        webkit_web_view_set_zoom_level(webView, level);
    }
    return TRUE;
}

gboolean zoomOutCB(WebKitWebView* webView) {
    const double level = webkit_web_view_get_zoom_level(webView) / kZoomFactor;
    if (level >= kLowestZoom) {
        webkit_web_view_set_zoom_level(webView, level);
    }
    return TRUE;
}

gboolean resetZoomCB(WebKitWebView* webView) {
    webkit_web_view_set_zoom_level(webView, 1.0);
    return TRUE;
}

struct Accelerator {
    guint key;
    GdkModifierType modifier;
    gboolean (*action)(WebKitWebView*);
};

constexpr Accelerator kAccelerators[] = {
    {GDK_KEY_r, GDK_CONTROL_MASK, reloadCB},
    {GDK_KEY_Left, GDK_MOD1_MASK, goBackCB},
    {GDK_KEY_equal, GDK_CONTROL_MASK, zoomInCB},
    {GDK_KEY_KP_Add, GDK_CONTROL_MASK, zoomInCB},
    {GDK_KEY_minus, GDK_CONTROL_MASK, zoomOutCB},
    {GDK_KEY_KP_Subtract, GDK_CONTROL_MASK, zoomOutCB},
    {GDK_KEY_0, GDK_CONTROL_MASK, resetZoomCB},
    {GDK_KEY_KP_0, GDK_CONTROL_MASK, resetZoomCB},
};

}  // namespace

CAcceleratorSet::CAcceleratorSet(GtkAccelGroup* group, WebKitWebView* webView) : m_group(group) {
    for (const Accelerator& accelerator : kAccelerators) {
        GClosure* const closure =
            g_cclosure_new_swap(G_CALLBACK(accelerator.action), webView, nullptr);
        gtk_accel_group_connect(m_group, accelerator.key, accelerator.modifier, GTK_ACCEL_VISIBLE,
                                closure);
        m_closures.push_back(closure);
    }
}

CAcceleratorSet::~CAcceleratorSet() {
    for (GClosure* const closure : m_closures) {
        gtk_accel_group_disconnect(m_group, closure);
    }
}
