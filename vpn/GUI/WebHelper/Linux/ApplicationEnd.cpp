#include "ApplicationEnd.h"

void QuitApplication(GtkApplication* application) {
    g_application_quit(G_APPLICATION(application));
    // g_application_quit() sets a flag that the loop reads between two iterations. When another
    // thread called it, an idle loop slept on for up to 13 seconds before it read the flag.
    g_main_context_wakeup(nullptr);
}
