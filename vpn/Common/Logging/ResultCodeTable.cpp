#include "ResultCodeTable.h"

namespace {

// Every module begins with a success code and the nine errors that all modules have in common.
#define TK_COMMON_RESULT_NAMES(prefix)                                                             \
    prefix "_SUCCESS", prefix "_ERROR_NOT_IMPLEMENTED", prefix "_ERROR_BAD_PARAMETER",             \
        prefix "_ERROR_BAD_HANDLE", prefix "_ERROR_MEMALLOC_FAILED", prefix "_ERROR_NULL_POINTER", \
        prefix "_ERROR_INSUFFICIENT_BUFFER", prefix "_ERROR_NOT_INITIALIZED",                      \
        prefix "_ERROR_ALREADY_INITIALIZED", prefix "_ERROR_UNEXPECTED"

constexpr const char* kGlobalNames[] = {
    TK_COMMON_RESULT_NAMES("GLOBAL"),
    "GLOBAL_ERROR_NO_INSTANCE",
    ("GLOBAL_ERROR_MGMT_TUNNEL_TERMINATING:used by Agent to signal to user tunnel Downloader that "
     "start"),
    "GLOBAL_ERROR_UNKNOWN",
};

constexpr const char* kStoragePathNames[] = {
    TK_COMMON_RESULT_NAMES("CSTORAGEPATH"),
    "CSTORAGEPATH_ERROR_NO_INSTANCE",
    "CSTORAGEPATH_ERROR_GETTEMPPATH_FAILED",
    "CSTORAGEPATH_ERROR_TEMPPATH_TOO_BIG",
    "CSTORAGEPATH_ERROR_UNKNOWN",
};

constexpr const char* kNamedMutexNames[] = {
    TK_COMMON_RESULT_NAMES("NAMEDMUTEX"),  "NAMEDMUTEX_ERROR_ALREADY_EXISTS",
    "NAMEDMUTEX_ERROR_CREATE_FILE_FAILED", "NAMEDMUTEX_ERROR_SET_PERMISSION_FAILED",
    "NAMEDMUTEX_ERROR_CREATE_LOCK_FAILED", "NAMEDMUTEX_ERROR_OPEN_FAILED",
    "NAMEDMUTEX_ERROR_LOCK_FAILED",        "NAMEDMUTEX_ERROR_LOCK_TIMEOUT",
    "NAMEDMUTEX_ERROR_UNLOCK_FAILED",      "NAMEDMUTEX_ERROR_INIT_SD_FAILED",
    "NAMEDMUTEX_ERROR_SET_DACL_FAILED",    "NAMEDMUTEX_ERROR_UNKNOWN",
};

constexpr const char* kJsonIpcClientNames[] = {
    TK_COMMON_RESULT_NAMES("JSONIPCCLIENT"),
    "JSONIPCCLIENT_ERROR_IOSERVICE_THREAD_FAILURE",
    "JSONIPCCLIENT_ERROR_STOP_THREAD_FAILURE",
    "JSONIPCCLIENT_ERROR_OPEN_SOCKET_FAILURE",
    "JSONIPCCLIENT_ERROR_UNKNOWN",
};

constexpr const char* kJsonIpcServerNames[] = {
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

constexpr const char* kBrowserIpcClientNames[] = {
    TK_COMMON_RESULT_NAMES("BROWSERIPCCLIENT"),
    "BROWSERIPCCLIENT_ERROR_SERIALIZE_FAILURE",
    "BROWSERIPCCLIENT_ERROR_UNKNOWN",
};

constexpr const char* kBrowserIpcServerNames[] = {
    TK_COMMON_RESULT_NAMES("BROWSERIPCSERVER"),
    "BROWSERIPCSERVER_ERROR_SERIALIZE_FAILURE",
    "BROWSERIPCSERVER_ERROR_UNKNOWN",
};

constexpr const char* kWebHelperPluginNames[] = {
    TK_COMMON_RESULT_NAMES("WEBHELPERPLUGIN"),
    "WEBHELPERPLUGIN_ERROR_MISSING_DEPENDENCY",
    "WEBHELPERPLUGIN_ERROR_INVALID_STATE",
    "WEBHELPERPLUGIN_ERROR_UNKNOWN",
};

constexpr const char* kSimpleBrowserPopupDialogNames[] = {
    TK_COMMON_RESULT_NAMES("SIMPLEBROWSER_POPUPDLG"),
    "SIMPLEBROWSER_POPUPDLG_ERROR_IPC_REGISTER_FAILURE",
    "SIMPLEBROWSER_POPUPDLG_ERROR_UNKNOWN",
};

constexpr const char* kAppLogCustomConfigNames[] = {
    TK_COMMON_RESULT_NAMES("APPLOGCUSTOMCONFIG"),
    "APPLOGCUSTOMCONFIG_ERROR_CONFIG_FILE_NOT_READABLE",
    "APPLOGCUSTOMCONFIG_ERROR_UNABLE_TO_OPEN_CONFIG_FILE",
    "APPLOGCUSTOMCONFIG_ERROR_UNKNOWN",
};

#undef TK_COMMON_RESULT_NAMES

constexpr const char* kPlaceholderNames[] = {"DUMMY_ERROR_NOT_IMPLEMENTED"};

template <std::uint32_t Count>
constexpr ResultCodeModule Module(const char* const (&names)[Count]) {
    return {Count, names};
}

constexpr std::uint32_t kPlaceholderSlots[] = {111, 125, 133, 134, 135, 136,
                                               193, 194, 195, 196, 198};

// The slots of the suite's other components stay empty, because this program never produces their
// codes.
constexpr ResultCodeTable MakeTable() {
    ResultCodeTable table{};
    for (const std::uint32_t slot : kPlaceholderSlots) {
        table[slot] = Module(kPlaceholderNames);
    }
    table[0] = Module(kGlobalNames);
    table[157] = Module(kStoragePathNames);
    table[215] = Module(kNamedMutexNames);
    table[216] = Module(kJsonIpcClientNames);
    table[217] = Module(kJsonIpcServerNames);
    table[218] = Module(kBrowserIpcClientNames);
    table[219] = Module(kBrowserIpcServerNames);
    table[220] = Module(kWebHelperPluginNames);
    table[221] = Module(kSimpleBrowserPopupDialogNames);
    table[222] = Module(kAppLogCustomConfigNames);
    return table;
}

}  // namespace

constexpr ResultCodeTable kResultCodeTable = MakeTable();
