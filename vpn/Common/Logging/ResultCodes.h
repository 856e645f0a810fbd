#pragma once

#include <cstdint>

/// The outcome of a call: 0 is success, any other value is a failure. The suite's own codes are
/// 0xFE000000 | module << 16 | index. Other values, such as an errno, have no name. A code never
/// exceeds 32 bits.
using ResultCode = unsigned long;

constexpr ResultCode kSuccess = 0;
constexpr ResultCode GLOBAL_ERROR_BAD_PARAMETER = 0xFE000002;
constexpr ResultCode GLOBAL_ERROR_MEMALLOC_FAILED = 0xFE000004;
constexpr ResultCode GLOBAL_ERROR_UNEXPECTED = 0xFE000009;
constexpr ResultCode CSTORAGEPATH_ERROR_NO_INSTANCE = 0xFE9D000A;
constexpr ResultCode CSTORAGEPATH_ERROR_TEMPPATH_TOO_BIG = 0xFE9D000C;
constexpr ResultCode JSONIPCCLIENT_ERROR_BAD_PARAMETER = 0xFED80002;
constexpr ResultCode JSONIPCCLIENT_ERROR_IOSERVICE_THREAD_FAILURE = 0xFED8000A;
constexpr ResultCode JSONIPCCLIENT_ERROR_OPEN_SOCKET_FAILURE = 0xFED8000C;
constexpr ResultCode BROWSERIPCCLIENT_ERROR_MEMALLOC_FAILED = 0xFEDA0004;
constexpr ResultCode BROWSERIPCCLIENT_ERROR_ALREADY_INITIALIZED = 0xFEDA0008;
constexpr ResultCode BROWSERIPCCLIENT_ERROR_SERIALIZE_FAILURE = 0xFEDA000A;
constexpr ResultCode APPLOGCUSTOMCONFIG_ERROR_UNEXPECTED = 0xFEDE0009;
constexpr ResultCode APPLOGCUSTOMCONFIG_ERROR_CONFIG_FILE_NOT_READABLE = 0xFEDE000A;
constexpr ResultCode APPLOGCUSTOMCONFIG_ERROR_UNABLE_TO_OPEN_CONFIG_FILE = 0xFEDE000B;

/// Returns the name of a result code, or null if it has none. Some names are followed by a colon
/// and a description. An index beyond its module's names gets the module's last name, normally that
/// of its unknown error. Before SetResultCodeTable() no code has a name. Any thread.
const char* GetResultCodeName(std::uint32_t code);
