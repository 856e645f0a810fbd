#include "LoadIndicator.h"

#include <cassert>
#include <cmath>

#include "MainLoopSource.h"
#include "MainThread.h"

namespace {

// A page that comes sooner needs no explanation.
constexpr guint kMomentMilliseconds = 500;
constexpr int kLineHeight = 3;

GdkRGBA LineColour(GtkWidget* window) {
    GtkStyleContext* const style = gtk_widget_get_style_context(window);
    GdkRGBA colour;
    if (gtk_style_context_lookup_color(style, "theme_selected_bg_color", &colour) == FALSE) {
        gtk_style_context_get_color(style, gtk_style_context_get_state(style), &colour);
    }
    return colour;
}

// Whether one of the engine's dialogs is over the page.
bool IsAsking(WebKitWebView* webView) {
    bool hasDialog = false;
    gtk_container_forall(
        GTK_CONTAINER(webView),
        [](GtkWidget* child, gpointer data) {
            auto* const isFound = static_cast<bool*>(data);
            *isFound = *isFound || gtk_widget_get_mapped(child) != FALSE;
        },
        &hasDialog);
    return hasDialog;
}

GObjectPtr<GdkCursor> Referenced(GdkCursor* pointer) {
    return GObjectPtr<GdkCursor>(pointer != nullptr ? GDK_CURSOR(g_object_ref(pointer)) : nullptr);
}

}  // namespace

CLoadIndicator::CLoadIndicator(GtkWidget* window, WebKitWebView* webView)
    : m_window(window), m_webView(webView) {
    assert(IsMainThread());
    g_signal_connect(m_webView, "notify::is-loading", G_CALLBACK(onIsLoading), this);
    g_signal_connect(m_webView, "notify::estimated-load-progress", G_CALLBACK(onProgress), this);
    // After everything in the window.
    g_signal_connect_after(m_window, "draw", G_CALLBACK(onDraw), this);
}

CLoadIndicator::~CLoadIndicator() {
    assert(IsMainThread());
    hide();
    g_signal_handlers_disconnect_by_data(m_window, this);
    g_signal_handlers_disconnect_by_data(m_webView, this);
}

void CLoadIndicator::onIsLoading(WebKitWebView* webView, GParamSpec* /*property*/,
                                 CLoadIndicator* self) {
    self->hide();
    if (webkit_web_view_is_loading(webView) != FALSE) {
        self->m_momentSource = g_timeout_add(kMomentMilliseconds, onMomentOver, self);
    }
}

gboolean CLoadIndicator::onMomentOver(gpointer self) {
    auto* const indicator = static_cast<CLoadIndicator*>(self);
    indicator->m_momentSource = 0;
    indicator->show();
    return G_SOURCE_REMOVE;
}

void CLoadIndicator::onProgress(WebKitWebView* /*webView*/, GParamSpec* /*property*/,
                                CLoadIndicator* self) {
    self->redraw();
}

void CLoadIndicator::show() {
    m_isShown = true;
    setBusyPointer();
    redraw();
}

void CLoadIndicator::hide() {
    RemoveSource(m_momentSource);
    resetPointer();
    redraw();
    m_isShown = false;
}

void CLoadIndicator::redraw() {
    if (m_isShown) {
        // The whole view: where only the line's place was drawn on a busy machine, the page's first
        // picture was seen there alone.
        gtk_widget_queue_draw(GTK_WIDGET(m_webView));
    }
}

gboolean CLoadIndicator::onDraw(GtkWidget* window, cairo_t* picture, CLoadIndicator* self) {
    if (self->m_isShown && !IsAsking(self->m_webView)) {
        const GdkRGBA colour = LineColour(window);
        GtkAllocation view;
        gtk_widget_get_allocation(GTK_WIDGET(self->m_webView), &view);
        const double part = webkit_web_view_get_estimated_load_progress(self->m_webView);
        const double length = std::round(view.width * part);
        const bool isRightToLeft = gtk_widget_get_direction(window) == GTK_TEXT_DIR_RTL;
        gdk_cairo_set_source_rgba(picture, &colour);
        cairo_rectangle(picture, isRightToLeft ? view.x + view.width - length : view.x, view.y,
                        length, kLineHeight);
        cairo_fill(picture);
    }
    return FALSE;
}

void CLoadIndicator::setBusyPointer() {
    GdkWindow* const surface = gtk_widget_get_window(GTK_WIDGET(m_webView));
    if (surface == nullptr) {
        return;  // never shown yet
    }
    m_surface.reset(GDK_WINDOW(g_object_ref(surface)));
    m_busyPointer.reset(gdk_cursor_new_from_name(gdk_window_get_display(surface), "progress"));
    m_pagesPointer = Referenced(gdk_window_get_cursor(surface));
    gdk_window_set_cursor(surface, m_busyPointer.get());
    g_signal_connect(surface, "notify::cursor", G_CALLBACK(onPointerChanged), this);
}

void CLoadIndicator::resetPointer() {
    if (m_surface) {
        g_signal_handlers_disconnect_by_data(m_surface.get(), this);
        gdk_window_set_cursor(m_surface.get(), m_pagesPointer.get());
        m_surface.reset();
    }
}

// The engine sets the pointer that the page wants whenever the pointer moves.
void CLoadIndicator::onPointerChanged(GdkWindow* surface, GParamSpec* /*property*/,
                                      CLoadIndicator* self) {
    if (gdk_window_get_cursor(surface) != self->m_busyPointer.get()) {
        self->m_pagesPointer = Referenced(gdk_window_get_cursor(surface));
        gdk_window_set_cursor(surface, self->m_busyPointer.get());
    }
}
