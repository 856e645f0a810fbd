#pragma once

#include <webkit2/webkit2.h>

/// Completes the dialog in which the engine asks for a name and a password in this view: after a
/// first try it says that this was wrong, and Escape cancels it. Handlers that are connected before
/// may answer a request without the dialog. Main thread only.
void CompletePasswordDialogs(WebKitWebView* webView);
