#pragma once

#include "IBrowserOperation.h"

/// What the browser IPC client tells its user. Every method is called on the I/O thread, must not
/// block for long, must not throw, and must not unregister the client.
class IBrowserIpcClientCB {
public:
    /// The operation is gone when the call returns: copy what is kept.
    virtual void OnReceivedBrowserOperation(const IBrowserOperation& operation) = 0;

    /// A message came that holds no operation.
    virtual void OnReceivedInvalidBrowserOperation() = 0;

    /// A result was written completely.
    virtual void OnBrowserResultSent() = 0;

    /// A result could not be written, or not in time: a late one is reported twice.
    virtual void OnBrowserResultSendError() = 0;

    /// There is no connection and there will be none.
    virtual void OnIpcConnectError() = 0;

    /// The connection ended, or a failed send took it down.
    virtual void OnIpcReceiveError() = 0;

    virtual ~IBrowserIpcClientCB() = default;
};
