#pragma once

#include "BrowserDataModel.h"
#include "ResultCodes.h"

/// The helper's connection to the agent. Obtained from RegisterBrowserIpcClient() and given back
/// with UnregisterBrowserIpcClient(). Owner's thread.
class IBrowserIpcClient {
public:
    /// Queues a result for sending and does not wait. OnBrowserResultSent() or
    /// OnBrowserResultSendError() reports what became of it. Returns
    /// BROWSERIPCCLIENT_ERROR_SERIALIZE_FAILURE, and sends nothing, if the result has no JSON form.
    /// Returns BROWSERIPCCLIENT_ERROR_MEMALLOC_FAILED if there is no memory to queue it.
    [[nodiscard]] virtual ResultCode SendBrowserResult(const CBrowserResult& result) = 0;

    virtual ~IBrowserIpcClient() = default;
};
