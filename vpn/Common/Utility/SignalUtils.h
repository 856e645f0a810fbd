#pragma once

#include <sys/select.h>

using SignalHandler = void (*)(int);

/// Waits like select(), but no signal cuts the wait short: gives the number of ready descriptors,
/// 0 when the timeout has passed and -1 on an error, which it logs. A null timeout does not wait.
int tk_select(int descriptorCount, fd_set* readSet, fd_set* writeSet, fd_set* exceptionSet,
              const timeval* timeout);

/// Installs the handler, during which no further signal is blocked and no call restarted. The
/// previous handler, when asked for, is null on failure. Logs its failures.
[[nodiscard]] bool install_sighdlr(int signalNumber, SignalHandler handler,
                                   SignalHandler* previous = nullptr);
