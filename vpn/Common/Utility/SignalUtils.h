#pragma once

#include <sys/select.h>

using SignalHandler = void (*)(int);

/// Waits like select(), but a signal does not end the wait. Returns the number of ready
/// descriptors, 0 after the timeout, or -1 on an error, which is logged. A null timeout means that
/// it does not wait.
int tk_select(int descriptorCount, fd_set* readSet, fd_set* writeSet, fd_set* exceptionSet,
              const timeval* timeout);

/// Installs a signal handler. While it runs, no other signal is blocked; interrupted system calls
/// are not restarted. If previous is not null, it gets the previous handler, or null on failure.
/// Logs its failures.
[[nodiscard]] bool install_sighdlr(int signalNumber, SignalHandler handler,
                                   SignalHandler* previous = nullptr);
