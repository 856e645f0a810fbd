#pragma once

#include "IBrowserOperation.h"

/// The callbacks of the browser IPC client. Each is called on the I/O thread. It must not block for
/// long, must not throw and must not unregister the client.
class IBrowserIpcClientCB {
public:
    /// An operation came. It is valid only during the call, so copy what must be kept.
    virtual void OnReceivedBrowserOperation(const IBrowserOperation& operation) = 0;

    /// A message came that contains no valid operation.
    virtual void OnReceivedInvalidBrowserOperation() = 0;

    /// A result was written completely.
    virtual void OnBrowserResultSent() = 0;

    /// A result could not be written, or not in time. A late result is reported twice.
    virtual void OnBrowserResultSendError() = 0;

    /// There is no connection and there will be none.
    virtual void OnIpcConnectError() = 0;

    /// The connection ended, or a failed send ended it.
    virtual void OnIpcReceiveError() = 0;

    virtual ~IBrowserIpcClientCB() = default;
};
