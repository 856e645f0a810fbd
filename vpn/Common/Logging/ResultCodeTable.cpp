#include "ResultCodeTable.h"

namespace {

// Every module begins with its success and the nine errors that mean the same everywhere.
#define TK_COMMON_RESULT_NAMES(prefix)                                                             \
    prefix "_SUCCESS", prefix "_ERROR_NOT_IMPLEMENTED", prefix "_ERROR_BAD_PARAMETER",             \
        prefix "_ERROR_BAD_HANDLE", prefix "_ERROR_MEMALLOC_FAILED", prefix "_ERROR_NULL_POINTER", \
        prefix "_ERROR_INSUFFICIENT_BUFFER", prefix "_ERROR_NOT_INITIALIZED",                      \
        prefix "_ERROR_ALREADY_INITIALIZED", prefix "_ERROR_UNEXPECTED"

const char* const kGlobalNames[] = {
    TK_COMMON_RESULT_NAMES("GLOBAL"),
    "GLOBAL_ERROR_NO_INSTANCE",
    "GLOBAL_ERROR_MGMT_TUNNEL_TERMINATING:used by Agent to signal to user tunnel Downloader that "
    "start",
    "GLOBAL_ERROR_UNKNOWN",
};

const char* const kStoragePathNames[] = {
    TK_COMMON_RESULT_NAMES("CSTORAGEPATH"),
    "CSTORAGEPATH_ERROR_NO_INSTANCE",
    "CSTORAGEPATH_ERROR_GETTEMPPATH_FAILED",
    "CSTORAGEPATH_ERROR_TEMPPATH_TOO_BIG",
    "CSTORAGEPATH_ERROR_UNKNOWN",
};

const char* const kNamedMutexNames[] = {
    TK_COMMON_RESULT_NAMES("NAMEDMUTEX"),  "NAMEDMUTEX_ERROR_ALREADY_EXISTS",
    "NAMEDMUTEX_ERROR_CREATE_FILE_FAILED", "NAMEDMUTEX_ERROR_SET_PERMISSION_FAILED",
    "NAMEDMUTEX_ERROR_CREATE_LOCK_FAILED", "NAMEDMUTEX_ERROR_OPEN_FAILED",
    "NAMEDMUTEX_ERROR_LOCK_FAILED",        "NAMEDMUTEX_ERROR_LOCK_TIMEOUT",
    "NAMEDMUTEX_ERROR_UNLOCK_FAILED",      "NAMEDMUTEX_ERROR_INIT_SD_FAILED",
    "NAMEDMUTEX_ERROR_SET_DACL_FAILED",    "NAMEDMUTEX_ERROR_UNKNOWN",
};

const char* const kJsonIpcClientNames[] = {
    TK_COMMON_RESULT_NAMES("JSONIPCCLIENT"),
    "JSONIPCCLIENT_ERROR_IOSERVICE_THREAD_FAILURE",
    "JSONIPCCLIENT_ERROR_STOP_THREAD_FAILURE",
    "JSONIPCCLIENT_ERROR_OPEN_SOCKET_FAILURE",
    "JSONIPCCLIENT_ERROR_UNKNOWN",
};

const char* const kJsonIpcServerNames[] = {
    TK_COMMON_RESULT_NAMES("JSONIPCSERVER"),
    "JSONIPCSERVER_ERROR_IOSERVICE_THREAD_FAILURE",
    "JSONIPCSERVER_ERROR_STOP_THREAD_FAILURE",
    "JSONIPCSERVER_ERROR_ACCEPTOR_OPEN_FAILURE",
    "JSONIPCSERVER_ERROR_ACCEPTOR_SET_OPTION_FAILURE",
    "JSONIPCSERVER_ERROR_ACCEPTOR_BIND_FAILURE",
    "JSONIPCSERVER_ERROR_ACCEPTOR_LISTEN_FAILURE",
    "JSONIPCSERVER_ERROR_FCNTL_FAILURE",
    "JSONIPCSERVER_ERROR_UNKNOWN",
};

const char* const kBrowserIpcClientNames[] = {
    TK_COMMON_RESULT_NAMES("BROWSERIPCCLIENT"),
    "BROWSERIPCCLIENT_ERROR_SERIALIZE_FAILURE",
    "BROWSERIPCCLIENT_ERROR_UNKNOWN",
};

const char* const kBrowserIpcServerNames[] = {
    TK_COMMON_RESULT_NAMES("BROWSERIPCSERVER"),
    "BROWSERIPCSERVER_ERROR_SERIALIZE_FAILURE",
    "BROWSERIPCSERVER_ERROR_UNKNOWN",
};

const char* const kWebHelperPluginNames[] = {
    TK_COMMON_RESULT_NAMES("WEBHELPERPLUGIN"),
    "WEBHELPERPLUGIN_ERROR_MISSING_DEPENDENCY",
    "WEBHELPERPLUGIN_ERROR_INVALID_STATE",
    "WEBHELPERPLUGIN_ERROR_UNKNOWN",
};

const char* const kSimpleBrowserPopupDialogNames[] = {
    TK_COMMON_RESULT_NAMES("SIMPLEBROWSER_POPUPDLG"),
    "SIMPLEBROWSER_POPUPDLG_ERROR_IPC_REGISTER_FAILURE",
    "SIMPLEBROWSER_POPUPDLG_ERROR_UNKNOWN",
};

const char* const kAppLogCustomConfigNames[] = {
    TK_COMMON_RESULT_NAMES("APPLOGCUSTOMCONFIG"),
    "APPLOGCUSTOMCONFIG_ERROR_CONFIG_FILE_NOT_READABLE",
    "APPLOGCUSTOMCONFIG_ERROR_UNABLE_TO_OPEN_CONFIG_FILE",
    "APPLOGCUSTOMCONFIG_ERROR_UNKNOWN",
};

#undef TK_COMMON_RESULT_NAMES

const char* const kPlaceholderNames[] = {"DUMMY_ERROR_NOT_IMPLEMENTED"};

template <std::uint32_t Count>
constexpr ResultCodeModule Module(const char* const (&names)[Count]) {
    return {Count, names};
}

constexpr ResultCodeModule kEmpty{0, nullptr};
constexpr ResultCodeModule kPlaceholder = Module(kPlaceholderNames);

}  // namespace

// Slots of the suite's other components, whose codes this program never produces, are empty.
const ResultCodeModule kResultCodeTable[kResultCodeModuleCount] = {
    Module(kGlobalNames),  // 0
    // 1 to 110
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kPlaceholder,  // 111
    // 112 to 124
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kPlaceholder,  // 125
    // 126 to 132
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kPlaceholder,  // 133
    kPlaceholder,  // 134
    kPlaceholder,  // 135
    kPlaceholder,  // 136
    // 137 to 156
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    Module(kStoragePathNames),  // 157
    // 158 to 192
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kPlaceholder,  // 193
    kPlaceholder,  // 194
    kPlaceholder,  // 195
    kPlaceholder,  // 196
    // 197
    kEmpty,
    kPlaceholder,  // 198
    // 199 to 214
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    kEmpty,
    Module(kNamedMutexNames),                // 215
    Module(kJsonIpcClientNames),             // 216
    Module(kJsonIpcServerNames),             // 217
    Module(kBrowserIpcClientNames),          // 218
    Module(kBrowserIpcServerNames),          // 219
    Module(kWebHelperPluginNames),           // 220
    Module(kSimpleBrowserPopupDialogNames),  // 221
    Module(kAppLogCustomConfigNames),        // 222
    // 223
    kEmpty,
};
