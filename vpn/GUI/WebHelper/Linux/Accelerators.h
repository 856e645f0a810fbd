#pragma once

#include <gtk/gtk.h>

/// Gives a group of accelerators the keys that reload, go back and zoom. They act upon the web view
/// that the window of the group has for a child when a key is pressed: a reset need not connect
/// them again, and none of them reaches a view that it has replaced. Main thread only.
void ConnectAccelerators(GtkAccelGroup* group);
