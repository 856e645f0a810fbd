#pragma once

#include <gtk/gtk.h>
#include <webkit2/webkit2.h>

#include <vector>

/// The keyboard's hold on one web view: reload, back and zoom. It connects to the group when made
/// and leaves it when destroyed, so that no key reaches a view that a reset has replaced. Main
/// thread only.
class CAcceleratorSet {
public:
    /// Neither the group nor the view is owned; both must outlive the set.
    CAcceleratorSet(GtkAccelGroup* group, WebKitWebView* webView);
    ~CAcceleratorSet();
    CAcceleratorSet(const CAcceleratorSet&) = delete;
    CAcceleratorSet& operator=(const CAcceleratorSet&) = delete;

private:
    GtkAccelGroup* m_group;
    std::vector<GClosure*> m_closures;
};
