#pragma once

#include <webkit2/webkit2.h>

/// Begins to find out whether the engine's sandbox works here, beside what the caller does next. To
/// be called early. Main thread.
void BeginSandboxProbe();

/// Puts the web processes of a context that has none yet into the engine's sandbox. Where the
/// sandbox does not work, logs why and leaves it off. Waits for the probe, which it begins if
/// nobody has. Main thread.
void ConfineWebProcesses(WebKitWebContext* context);

/// Removes the notes that the engine writes of each sandbox and leaves in the user's runtime
/// folder, or in the cache folder if there is none. To be called when no web process starts any
/// more. Main thread.
void RemoveSandboxNotes();
