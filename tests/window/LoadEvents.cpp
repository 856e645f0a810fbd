#include "LoadEvents.h"

#include <algorithm>

#include "MainLoop.h"

namespace {

const char* NameOf(WebKitLoadEvent event) {
    switch (event) {
        case WEBKIT_LOAD_STARTED:
            return "STARTED";
        case WEBKIT_LOAD_REDIRECTED:
            return "REDIRECTED";
        case WEBKIT_LOAD_COMMITTED:
            return "COMMITTED";
        case WEBKIT_LOAD_FINISHED:
            return "FINISHED";
    }
    return "";
}

}  // namespace

LoadEvents::LoadEvents() {
    // The class must exist before its signals do.
    g_type_class_unref(g_type_class_ref(WEBKIT_TYPE_WEB_VIEW));
    m_changedSignal = g_signal_lookup("load-changed", WEBKIT_TYPE_WEB_VIEW);
    m_failedSignal = g_signal_lookup("load-failed", WEBKIT_TYPE_WEB_VIEW);
    m_changedHook = g_signal_add_emission_hook(m_changedSignal, 0, onLoadChanged, this, nullptr);
    m_failedHook = g_signal_add_emission_hook(m_failedSignal, 0, onLoadFailed, this, nullptr);
}

LoadEvents::~LoadEvents() {
    g_signal_remove_emission_hook(m_changedSignal, m_changedHook);
    g_signal_remove_emission_hook(m_failedSignal, m_failedHook);
}

bool LoadEvents::WaitFor(const std::string& event, std::size_t count) const {
    return RunMainLoopUntil([&] {
        return static_cast<std::size_t>(std::count(m_events.begin(), m_events.end(), event)) >=
               count;
    });
}

gboolean LoadEvents::onLoadChanged(GSignalInvocationHint* /*hint*/, guint /*count*/,
                                   const GValue* values, gpointer self) {
    auto* const view = static_cast<WebKitWebView*>(g_value_get_object(&values[0]));
    const char* const uri = webkit_web_view_get_uri(view);
    const char* const name = NameOf(static_cast<WebKitLoadEvent>(g_value_get_enum(&values[1])));
    static_cast<LoadEvents*>(self)->m_events.push_back(std::string(name) + " " +
                                                       (uri != nullptr ? uri : ""));
    return TRUE;
}

gboolean LoadEvents::onLoadFailed(GSignalInvocationHint* /*hint*/, guint /*count*/,
                                  const GValue* values, gpointer self) {
    const auto* const error = static_cast<const GError*>(g_value_get_boxed(&values[3]));
    static_cast<LoadEvents*>(self)->m_lastFailure = error->message;
    return TRUE;
}
