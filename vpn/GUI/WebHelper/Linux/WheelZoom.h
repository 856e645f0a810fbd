#pragma once

#include <webkit2/webkit2.h>

/// Zooms one web view with Control and the wheel, a step for each notch. The page does not get such
/// a turn of the wheel. Main thread only.
class CWheelZoom {
public:
    /// The view is not owned and must outlive this.
    explicit CWheelZoom(WebKitWebView* webView);
    ~CWheelZoom();
    CWheelZoom(const CWheelZoom&) = delete;
    CWheelZoom& operator=(const CWheelZoom&) = delete;

private:
    static gboolean onScroll(WebKitWebView* webView, GdkEvent* event, CWheelZoom* self);

    WebKitWebView* m_webView;
    // What a touchpad or a fine wheel has turned since the last step, in notches. Positive is up.
    double m_turned = 0;
};
