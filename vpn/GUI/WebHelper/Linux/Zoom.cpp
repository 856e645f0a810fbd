#include "Zoom.h"

namespace {

constexpr double kZoomFactor = 1.1;
constexpr double kHighestZoom = 5.0;
constexpr double kLowestZoom = 0.25;

}  // namespace

void ZoomIn(WebKitWebView* webView) {
    const double level = webkit_web_view_get_zoom_level(webView) * kZoomFactor;
    if (level <= kHighestZoom) {
        webkit_web_view_set_zoom_level(webView, level);
    }
}

void ZoomOut(WebKitWebView* webView) {
    const double level = webkit_web_view_get_zoom_level(webView) / kZoomFactor;
    if (level >= kLowestZoom) {
        webkit_web_view_set_zoom_level(webView, level);
    }
}

void ResetZoom(WebKitWebView* webView) {
    webkit_web_view_set_zoom_level(webView, 1.0);
}
