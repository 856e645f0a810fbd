#include "WheelZoom.h"

#include <cassert>

#include "MainThread.h"
#include "Zoom.h"

namespace {

// Only modifiers that a person holds count, not Num Lock and the like.
bool HasControlAlone(GdkEvent* event) {
    GdkModifierType state{};
    gdk_event_get_state(event, &state);
    return (state & gtk_accelerator_get_default_mod_mask()) == GDK_CONTROL_MASK;
}

// In notches; positive is up.
double TurnOf(GdkEvent* event) {
    GdkScrollDirection direction{};
    if (gdk_event_get_scroll_direction(event, &direction) == FALSE) {
        double across = 0;
        double down = 0;
        gdk_event_get_scroll_deltas(event, &across, &down);
        return -down;
    }
    switch (direction) {
        case GDK_SCROLL_UP:
            return 1;
        case GDK_SCROLL_DOWN:
            return -1;
        default:
            return 0;
    }
}

}  // namespace

CWheelZoom::CWheelZoom(WebKitWebView* webView) : m_webView(webView) {
    assert(IsMainThread());
    g_signal_connect(m_webView, "scroll-event", G_CALLBACK(onScroll), this);
}

CWheelZoom::~CWheelZoom() {
    assert(IsMainThread());
    g_signal_handlers_disconnect_by_data(m_webView, this);
}

gboolean CWheelZoom::onScroll(WebKitWebView* webView, GdkEvent* event, CWheelZoom* self) {
    if (!HasControlAlone(event)) {
        self->m_turned = 0;
        return FALSE;
    }
    self->m_turned += TurnOf(event);
    while (self->m_turned >= 1) {
        self->m_turned -= 1;
        ZoomIn(webView);
    }
    while (self->m_turned <= -1) {
        self->m_turned += 1;
        ZoomOut(webView);
    }
    return TRUE;
}
