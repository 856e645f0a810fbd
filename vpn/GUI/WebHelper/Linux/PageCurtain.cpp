#include "PageCurtain.h"

#include <cassert>
#include <memory>

#include "MainLoopSource.h"
#include "MainThread.h"

namespace {

constexpr guint kLongestWaitMilliseconds = 500;

// The page's scripts do not see this. A frame is drawn before the second call.
constexpr char kWorld[] = "tkwebhelper";
constexpr char kTwoFrames[] =
    "return new Promise(drawn => requestAnimationFrame(() => requestAnimationFrame(drawn)))";

// Whether the event is meant for the page, and not for a dialog in the view.
bool IsInputOf(GtkWidget* webView, GdkEvent* event) {
    switch (gdk_event_get_event_type(event)) {
        case GDK_KEY_PRESS:
        case GDK_KEY_RELEASE:
            return gtk_widget_is_focus(webView) != FALSE;
        case GDK_BUTTON_PRESS:
        case GDK_2BUTTON_PRESS:
        case GDK_3BUTTON_PRESS:
        case GDK_BUTTON_RELEASE:
        case GDK_MOTION_NOTIFY:
        case GDK_SCROLL:
        case GDK_TOUCH_BEGIN:
        case GDK_TOUCH_UPDATE:
        case GDK_TOUCH_END:
        case GDK_TOUCH_CANCEL:
            return gtk_get_event_widget(event) == webView;
        default:
            return false;
    }
}

// The engine makes no further picture until it has drawn the last one somewhere.
void DrawUnseen(GtkWidget* webView) {
    const std::unique_ptr<cairo_surface_t, void (*)(cairo_surface_t*)> pixel(
        cairo_image_surface_create(CAIRO_FORMAT_RGB24, 1, 1), cairo_surface_destroy);
    const std::unique_ptr<cairo_t, void (*)(cairo_t*)> picture(cairo_create(pixel.get()),
                                                               cairo_destroy);
    GTK_WIDGET_GET_CLASS(webView)->draw(webView, picture.get());
}

}  // namespace

CPageCurtain::CPageCurtain(WebKitWebView* webView) : m_webView(webView) {
    assert(IsMainThread());
    g_signal_connect(m_webView, "draw", G_CALLBACK(onDraw), this);
    g_signal_connect(m_webView, "event", G_CALLBACK(onEvent), this);
}

CPageCurtain::~CPageCurtain() {
    assert(IsMainThread());
    forgetDrawing();
    g_signal_handlers_disconnect_by_data(m_webView, this);
}

void CPageCurtain::Close() {
    assert(IsMainThread());
    forgetDrawing();
    if (webkit_web_view_get_uri(m_webView) != nullptr) {
        m_isClosed = true;
        m_keepsInput = true;
        gtk_widget_queue_draw(GTK_WIDGET(m_webView));
    }
}

void CPageCurtain::OpenWhenDrawn() {
    assert(IsMainThread());
    m_keepsInput = false;
    if (m_isClosed) {
        forgetDrawing();
        m_drawing.reset(g_cancellable_new());
        webkit_web_view_call_async_javascript_function(m_webView, kTwoFrames, -1, nullptr, kWorld,
                                                       nullptr, m_drawing.get(), onDrawn, this);
    }
}

void CPageCurtain::OpenSoon() {
    assert(IsMainThread());
    if (m_isClosed) {
        RemoveSource(m_momentSource);
        m_momentSource = g_timeout_add(kLongestWaitMilliseconds, onMomentOver, this);
    }
}

gboolean CPageCurtain::onMomentOver(gpointer self) {
    static_cast<CPageCurtain*>(self)->m_momentSource = 0;
    static_cast<CPageCurtain*>(self)->open();
    return G_SOURCE_REMOVE;
}

void CPageCurtain::open() {
    m_isClosed = false;
    gtk_widget_queue_draw(GTK_WIDGET(m_webView));
}

void CPageCurtain::forgetDrawing() {
    RemoveSource(m_momentSource);
    if (m_drawing) {
        g_cancellable_cancel(m_drawing.get());
        m_drawing.reset();
    }
}

gboolean CPageCurtain::onDraw(GtkWidget* webView, cairo_t* picture, CPageCurtain* self) {
    if (!self->m_isClosed) {
        return FALSE;
    }
    DrawUnseen(webView);
    gtk_container_forall(
        GTK_CONTAINER(webView),
        [](GtkWidget* dialog, gpointer data) {
            gtk_container_propagate_draw(GTK_CONTAINER(gtk_widget_get_parent(dialog)), dialog,
                                         static_cast<cairo_t*>(data));
        },
        picture);
    return TRUE;
}

gboolean CPageCurtain::onEvent(GtkWidget* webView, GdkEvent* event, CPageCurtain* self) {
    return self->m_keepsInput && IsInputOf(webView, event) ? TRUE : FALSE;
}

void CPageCurtain::onDrawn(GObject* webView, GAsyncResult* result, gpointer self) {
    GError* rawError = nullptr;
    const GObjectPtr<JSCValue> nothing(webkit_web_view_call_async_javascript_function_finish(
        WEBKIT_WEB_VIEW(webView), result, &rawError));
    const GErrorPtr error(rawError);
    if (error && g_error_matches(error.get(), G_IO_ERROR, G_IO_ERROR_CANCELLED) != FALSE) {
        return;  // another page is awaited, or the curtain is gone
    }
    static_cast<CPageCurtain*>(self)->open();
}
