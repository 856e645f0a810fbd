#pragma once

#include <gtk/gtk.h>

/// Adds the keys for reload, back, forward and zoom to an accelerator group. A key acts on the web
/// view that is the child of the group's window when the key is pressed. A reset therefore need not
/// connect the keys again, and no key reaches a view that was replaced. Main thread only.
void ConnectAccelerators(GtkAccelGroup* group);
