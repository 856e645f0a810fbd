#pragma once

#include <webkit2/webkit2.h>

#include "GObjectPtr.h"

/// Tells the person at the window that one web view is loading, if that takes longer than a moment:
/// by a line over the view's upper edge, as long as the engine's estimate of how much has come, and
/// by the pointer. The line is drawn over the page and takes no room from it. It has the theme's
/// colour, and never moves by itself. While a dialog asks the person something, it is not drawn:
/// the page waits for them. Main thread only.
class CLoadIndicator {
public:
    /// The view is not owned, is the window's child and must outlive this.
    CLoadIndicator(GtkWidget* window, WebKitWebView* webView);
    ~CLoadIndicator();
    CLoadIndicator(const CLoadIndicator&) = delete;
    CLoadIndicator& operator=(const CLoadIndicator&) = delete;

private:
    void show();
    void hide();
    void redraw();
    void setBusyPointer();
    void resetPointer();

    static void onIsLoading(WebKitWebView* webView, GParamSpec* property, CLoadIndicator* self);
    static gboolean onMomentOver(gpointer self);
    static void onProgress(WebKitWebView* webView, GParamSpec* property, CLoadIndicator* self);
    static gboolean onDraw(GtkWidget* window, cairo_t* picture, CLoadIndicator* self);
    static void onPointerChanged(GdkWindow* surface, GParamSpec* property, CLoadIndicator* self);

    GtkWidget* m_window;
    WebKitWebView* m_webView;
    guint m_momentSource = 0;
    bool m_isShown = false;
    // Where the busy pointer is set: the view as the screen has it. Null while no pointer is set.
    GObjectPtr<GdkWindow> m_surface;
    GObjectPtr<GdkCursor> m_busyPointer;
    // The pointer that the engine wants. Null for the window's.
    GObjectPtr<GdkCursor> m_pagesPointer;
};
