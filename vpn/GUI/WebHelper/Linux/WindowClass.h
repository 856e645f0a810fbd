#pragma once

#include <gtk/gtk.h>

/// Gives a window that is not realized yet the class by which desktops find its entry and icon, and
/// window managers their rules. The toolkit would take the product's name, which has spaces. Main
/// thread only.
void SetWindowClass(GtkWindow* window);
