#pragma once

#include <gio/gio.h>

#include <functional>
#include <vector>

#include "GObjectPtr.h"
#include "TokenCertificate.h"

/// One reading of the machine's tokens, on a thread of its own, because a card can take seconds and
/// a broken one forever. Main thread only.
class CTokenListing {
public:
    using Finished = std::function<void(const std::vector<TokenCertificate>&)>;

    /// Begins. The handler is called later by the main loop, unless this is destroyed before.
    explicit CTokenListing(Finished finished);
    /// Does not wait for the thread.
    ~CTokenListing();
    CTokenListing(const CTokenListing&) = delete;
    CTokenListing& operator=(const CTokenListing&) = delete;

private:
    static void read(GTask* task, gpointer source, gpointer data, GCancellable* cancellable);
    static void onRead(GObject* source, GAsyncResult* result, gpointer self);

    Finished m_finished;
    GObjectPtr<GCancellable> m_cancellable;
};
