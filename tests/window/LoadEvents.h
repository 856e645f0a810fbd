#pragma once

#include <webkit2/webkit2.h>

#include <string>
#include <vector>

/// What the engine tells of loads in every web view of this process, in order: "STARTED url",
/// "REDIRECTED url", "COMMITTED url", "FINISHED url". An event is here before its handlers run.
class LoadEvents {
public:
    LoadEvents();
    ~LoadEvents();
    LoadEvents(const LoadEvents&) = delete;
    LoadEvents& operator=(const LoadEvents&) = delete;

    [[nodiscard]] const std::vector<std::string>& All() const { return m_events; }

    /// Runs the main loop until so many such events have been handled; false when the test
    /// deadline passed.
    [[nodiscard]] bool WaitFor(const std::string& event, std::size_t count = 1) const;

    /// The message of the last "load-failed", in the engine's own words, which change with its
    /// version; empty without one.
    [[nodiscard]] const std::string& LastFailure() const { return m_lastFailure; }

private:
    static gboolean onLoadChanged(GSignalInvocationHint* hint, guint count, const GValue* values,
                                  gpointer self);
    static gboolean onLoadFailed(GSignalInvocationHint* hint, guint count, const GValue* values,
                                 gpointer self);

    std::vector<std::string> m_events;
    std::string m_lastFailure;
    guint m_changedSignal;
    guint m_failedSignal;
    gulong m_changedHook;
    gulong m_failedHook;
};
