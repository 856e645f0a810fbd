#include "BrowserTypes.h"

const std::unordered_map<BrowserOperationType, std::string> OperationTypeNames{
    {BrowserOperationType::browse, "browse"},
    {BrowserOperationType::browse_for_cookie, "browse_for_cookie"},
    {BrowserOperationType::terminate, "terminate"},
    {BrowserOperationType::reset, "reset"},
    {BrowserOperationType::undefined, "undefined"},
};

const std::unordered_map<BrowserResultType, std::string> ResultTypeNames{
    {BrowserResultType::ready, "ready"},
    {BrowserResultType::cancel, "cancel"},
    {BrowserResultType::success, "success"},
    {BrowserResultType::success_with_cookie, "success_with_cookie"},
    {BrowserResultType::error_cookie, "error_cookie"},
    {BrowserResultType::error_navi, "error_navi"},
    {BrowserResultType::error_cert, "error_cert"},
    {BrowserResultType::error_timeout, "error_timeout"},
    {BrowserResultType::error_client_terminated, "error_client_terminated"},
    {BrowserResultType::error_unknown, "error_unknown"},
    {BrowserResultType::undefined, "undefined"},
};
