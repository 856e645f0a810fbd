#pragma once

#include <cstdint>
#include <string>
#include <unordered_map>

/// What the browser is asked to do. The wire carries the names, never the values.
enum class BrowserOperationType : std::int32_t {
    browse = 0,
    browse_for_cookie = -1,
    terminate = -2,
    reset = -3,
    undefined = -4,
};

/// How an operation ended. There is deliberately no -8.
enum class BrowserResultType : std::int32_t {
    ready = 0,
    cancel = -1,
    success = -2,
    success_with_cookie = -3,
    error_cookie = -4,
    error_navi = -5,
    error_cert = -6,
    error_timeout = -7,
    error_client_terminated = -9,
    error_unknown = -10,
    undefined = -11,
};

/// The JSON names of the types. Initialised before main() and constant from then on. Any thread.
extern const std::unordered_map<BrowserOperationType, std::string> OperationTypeNames;
extern const std::unordered_map<BrowserResultType, std::string> ResultTypeNames;
