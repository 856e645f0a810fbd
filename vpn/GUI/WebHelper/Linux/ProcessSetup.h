#pragma once

#include <gtk/gtk.h>

/// Keeps everything that this process and the engine's processes write private to their user. Files
/// get no permissions for others. A crash leaves no core file, because that would contain the
/// cookies. Must be called first of all, while there is one thread.
void KeepSecretsPrivate();

/// Keeps other processes of the same user, and whatever handles its crash, from reading this
/// process's memory, which contains the cookies. Keeps all that it starts from gaining rights. Must
/// be called first of all, while there is one thread.
void KeepOthersOut();

/// Keeps the toolkit and the engine from loading the graphics driver into this process, which draws
/// nothing with it. This saves two fifths of the start-up time, and of the memory after the start.
/// If the environment sets WEBKIT_DISABLE_DMABUF_RENDERER already, the engine's variables are left
/// alone. Must be called first of all, while there is one thread.
void DoWithoutGraphicsDriver();

/// Lets pages know the desktop's settings (dark colours, reduced motion, fonts) where they are not
/// in the engine's sandbox. The engine reads these settings when it first looks at the display. To
/// set up a sandbox it looks; otherwise it looks only when it asks the graphics driver for the
/// device, so this takes that part of DoWithoutGraphicsDriver() back. Must be called before the
/// first page. Main thread.
void LetEngineReadDesktopSettings();

/// Keeps the libraries of a confined web process from asking the desktop's portal, which could keep
/// the page waiting for half a minute. Must be called first of all, while there is one thread.
void DoWithoutPortal();

/// Keeps out of this process and of the engine's processes what the environment could ask of them
/// against the person's interest: to offer the page to other users for inspection, to write TLS
/// keys to a file, and, unless the environment says what to speak, TLS before 1.2. Must be called
/// first of all, while there is one thread.
void SecureEnvironment();

/// Logs the messages with which the toolkit or the engine ends the program, which otherwise go to
/// the error stream alone. Called once, before the application runs.
void LogWhatEndsTheProgram();

/// Makes SIGTERM, SIGINT and SIGHUP end the application's main loop, and with it the process, as
/// `terminate` does. Ignores SIGPIPE: a write to a broken connection reports an error instead. The
/// application must outlive the main loop. Main thread.
void QuitOnSignals(GtkApplication* application);
