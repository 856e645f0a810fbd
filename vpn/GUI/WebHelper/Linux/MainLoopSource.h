#pragma once

#include <glib.h>

/// Removes the source from the main loop, if there is one, and sets its number to 0.
inline void RemoveSource(guint& source) {
    if (source != 0) {
        g_source_remove(source);
        source = 0;
    }
}
