#pragma once

#include <webkit2/webkit2.h>

#include "GObjectPtr.h"

/// Hides the last page of one web view while the next operation's page is on its way: nobody sees
/// that page, and keys and clicks do not reach it. The view stays where it is, and shows the
/// window's background. Dialogs of the engine, which the next page may need before it comes, stay
/// usable. Main thread only.
class CPageCurtain {
public:
    /// The view is not owned and must outlive the curtain, which is open at first.
    explicit CPageCurtain(WebKitWebView* webView);
    ~CPageCurtain();
    CPageCurtain(const CPageCurtain&) = delete;
    CPageCurtain& operator=(const CPageCurtain&) = delete;

    /// The page that the view shows is over. Does nothing if the view never had a page.
    void Close();

    /// Whether the next page is still to come, so that what a person presses or clicks is for no
    /// page.
    [[nodiscard]] bool KeepsInput() const { return m_keepsInput; }

    /// The next page has taken the other one's place, and takes input. The engine shows the other
    /// one's picture until it has drawn the new page; then the curtain opens.
    void OpenWhenDrawn();

    /// The next page has finished. The curtain opens after a moment at the latest, whether the
    /// engine tells of a picture or not.
    void OpenSoon();

private:
    void open();
    void forgetDrawing();

    static gboolean onDraw(GtkWidget* webView, cairo_t* picture, CPageCurtain* self);
    static gboolean onEvent(GtkWidget* webView, GdkEvent* event, CPageCurtain* self);
    static gboolean onMomentOver(gpointer self);
    static void onDrawn(GObject* webView, GAsyncResult* result, gpointer self);

    WebKitWebView* m_webView;
    bool m_isClosed = false;
    bool m_keepsInput = false;
    // Cancels the wait for the page's first picture.
    GObjectPtr<GCancellable> m_drawing;
    guint m_momentSource = 0;
};
