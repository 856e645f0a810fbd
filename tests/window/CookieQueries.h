#pragma once

#include <webkit2/webkit2.h>

/// Runs the main loop until every cookie query that has been made so far is answered; false when
/// the test deadline passed. The engine answers them in their order, so one more is made.
[[nodiscard]] bool WaitForCookieQueries(WebKitWebView* view);
