#pragma once

#include <webkit2/webkit2.h>

#include <functional>

#include "GObjectPtr.h"

/// A web context whose pages store what they store in this process's session folder. Only which
/// hosts want a secure connection is kept for later processes; cookies are the cookie manager's
/// business. Without a session folder the context is ephemeral: it keeps everything in memory,
/// cookies too. Removes what earlier versions left in the user's folders. The caller owns the
/// context. Main thread only.
[[nodiscard]] WebKitWebContext* NewWebContext();

/// Forgets what the pages of one context have stored, but for the cookies and for which hosts want
/// a secure connection. A page must not be loaded meanwhile, because what it stores would be taken
/// away under its hands. Main thread only.
class CWebsiteDataRemoval {
public:
    using Finished = std::function<void()>;

    /// The context is not owned. The handler is called each time everything is forgotten.
    CWebsiteDataRemoval(WebKitWebContext* context, Finished finished);
    ~CWebsiteDataRemoval();
    CWebsiteDataRemoval(const CWebsiteDataRemoval&) = delete;
    CWebsiteDataRemoval& operator=(const CWebsiteDataRemoval&) = delete;

    void Start();
    [[nodiscard]] bool IsGoingOn() const { return m_running > 0; }

private:
    static void onCleared(GObject* manager, GAsyncResult* result, gpointer self);

    WebKitWebContext* m_context;
    Finished m_finished;
    GObjectPtr<GCancellable> m_cancellable;
    int m_running = 0;
};
