#pragma once

#include <gtk/gtk.h>

/// Keeps what the process and the engine's processes write to their user alone: files get no
/// permissions for others, and a crash leaves no core file, which would have the cookies in it.
/// Called first of all, while there is one thread.
void KeepSecretsPrivate();

/// Keeps the toolkit and the engine from loading the graphics driver into this process, which draws
/// nothing with it: two fifths of the start's time and of the memory behind it go with it.
/// Whoever sets the engine's first variable here decides for the engine. Called first of all, while
/// there is one thread.
void DoWithoutGraphicsDriver();

/// Logs the messages with which the toolkit or the engine ends the program, which otherwise go to
/// the error stream alone. Called once, before the application runs.
void LogWhatEndsTheProgram();

/// Ends the application's main loop, and with it the process, on SIGTERM, SIGINT and SIGHUP as a
/// `terminate` does. A connection that broke is reported where it is written to, not by SIGPIPE.
/// The application must outlive the main loop. Main thread.
void QuitOnSignals(GtkApplication* application);
