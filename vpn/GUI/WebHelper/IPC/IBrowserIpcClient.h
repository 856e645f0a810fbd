#pragma once

#include "BrowserDataModel.h"
#include "ResultCodes.h"

/// The helper's link to the agent, as its user holds it. Obtained from RegisterBrowserIpcClient()
/// and given back through UnregisterBrowserIpcClient(). Owner's thread.
class IBrowserIpcClient {
public:
    /// Hands a result over to be sent and does not wait: what became of it is told by
    /// OnBrowserResultSent or OnBrowserResultSendError. Gives
    /// BROWSERIPCCLIENT_ERROR_SERIALIZE_FAILURE, and sends nothing, when it has no JSON form;
    /// BROWSERIPCCLIENT_ERROR_MEMALLOC_FAILED when there is no memory to hand it over.
    [[nodiscard]] virtual ResultCode SendBrowserResult(const CBrowserResult& result) = 0;

    virtual ~IBrowserIpcClient() = default;
};
