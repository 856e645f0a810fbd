#pragma once

#include <gtk/gtk.h>

/// Ends the application's main loop at once. Any thread.
void QuitApplication(GtkApplication* application);
