#pragma once

#include <webkit2/webkit2.h>

// Steps of a web view's zoom, each by a tenth. A step that would leave the range is ignored, not
// clamped. The levels therefore stay powers of the factor, and zooming back passes through the same
// levels. Main thread only.

void ZoomIn(WebKitWebView* webView);
void ZoomOut(WebKitWebView* webView);

/// Back to the size that the page itself has.
void ResetZoom(WebKitWebView* webView);
