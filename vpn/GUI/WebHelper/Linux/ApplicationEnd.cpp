#include "ApplicationEnd.h"

void QuitApplication(GtkApplication* application) {
    g_application_quit(G_APPLICATION(application));
    // Quitting sets a flag that the loop reads between two iterations. Asked for by another
    // thread, an idle loop slept on for up to 13 seconds before it looked.
    g_main_context_wakeup(nullptr);
}
