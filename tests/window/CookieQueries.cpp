#include "CookieQueries.h"

#include "MainLoop.h"

bool WaitForCookieQueries(WebKitWebView* view) {
    WebKitCookieManager* const manager =
        webkit_web_context_get_cookie_manager(webkit_web_view_get_context(view));
    bool answered = false;
    webkit_cookie_manager_get_cookies(
        manager, "http://127.0.0.1/", nullptr,
        [](GObject*, GAsyncResult*, gpointer flag) { *static_cast<bool*>(flag) = true; },
        &answered);
    return RunMainLoopUntil([&] { return answered; });
}
