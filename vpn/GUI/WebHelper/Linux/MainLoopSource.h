#pragma once

#include <glib.h>

/// Takes the source from the main loop, if there is one, and forgets its number.
inline void RemoveSource(guint& source) {
    if (source != 0) {
        g_source_remove(source);
        source = 0;
    }
}
