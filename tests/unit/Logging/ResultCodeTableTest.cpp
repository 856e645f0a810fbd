#include "ResultCodeTable.h"

#include <gmock/gmock.h>

#include <map>
#include <set>
#include <string>
#include <vector>

namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsNull;

using Names = std::vector<std::string>;

struct ModuleRow {
    std::uint32_t slot;
    std::string prefix;
    std::uint32_t count;
    Names ownNames;
};

void PrintTo(const ModuleRow& row, std::ostream* out) {
    *out << row.prefix;
}

const ModuleRow kModuleRows[] = {
    {0,
     "GLOBAL",
     13,
     {"GLOBAL_ERROR_NO_INSTANCE",
      "GLOBAL_ERROR_MGMT_TUNNEL_TERMINATING:used by Agent to signal to user tunnel Downloader that "
      "start",
      "GLOBAL_ERROR_UNKNOWN"}},
    {157,
     "CSTORAGEPATH",
     14,
     {"CSTORAGEPATH_ERROR_NO_INSTANCE", "CSTORAGEPATH_ERROR_GETTEMPPATH_FAILED",
      "CSTORAGEPATH_ERROR_TEMPPATH_TOO_BIG", "CSTORAGEPATH_ERROR_UNKNOWN"}},
    {215,
     "NAMEDMUTEX",
     21,
     {"NAMEDMUTEX_ERROR_ALREADY_EXISTS", "NAMEDMUTEX_ERROR_CREATE_FILE_FAILED",
      "NAMEDMUTEX_ERROR_SET_PERMISSION_FAILED", "NAMEDMUTEX_ERROR_CREATE_LOCK_FAILED",
      "NAMEDMUTEX_ERROR_OPEN_FAILED", "NAMEDMUTEX_ERROR_LOCK_FAILED",
      "NAMEDMUTEX_ERROR_LOCK_TIMEOUT", "NAMEDMUTEX_ERROR_UNLOCK_FAILED",
      "NAMEDMUTEX_ERROR_INIT_SD_FAILED", "NAMEDMUTEX_ERROR_SET_DACL_FAILED",
      "NAMEDMUTEX_ERROR_UNKNOWN"}},
    {216,
     "JSONIPCCLIENT",
     14,
     {"JSONIPCCLIENT_ERROR_IOSERVICE_THREAD_FAILURE", "JSONIPCCLIENT_ERROR_STOP_THREAD_FAILURE",
      "JSONIPCCLIENT_ERROR_OPEN_SOCKET_FAILURE", "JSONIPCCLIENT_ERROR_UNKNOWN"}},
    {217,
     "JSONIPCSERVER",
     18,
     {"JSONIPCSERVER_ERROR_IOSERVICE_THREAD_FAILURE", "JSONIPCSERVER_ERROR_STOP_THREAD_FAILURE",
      "JSONIPCSERVER_ERROR_ACCEPTOR_OPEN_FAILURE",
      "JSONIPCSERVER_ERROR_ACCEPTOR_SET_OPTION_FAILURE",
      "JSONIPCSERVER_ERROR_ACCEPTOR_BIND_FAILURE", "JSONIPCSERVER_ERROR_ACCEPTOR_LISTEN_FAILURE",
      "JSONIPCSERVER_ERROR_FCNTL_FAILURE", "JSONIPCSERVER_ERROR_UNKNOWN"}},
    {218,
     "BROWSERIPCCLIENT",
     12,
     {"BROWSERIPCCLIENT_ERROR_SERIALIZE_FAILURE", "BROWSERIPCCLIENT_ERROR_UNKNOWN"}},
    {219,
     "BROWSERIPCSERVER",
     12,
     {"BROWSERIPCSERVER_ERROR_SERIALIZE_FAILURE", "BROWSERIPCSERVER_ERROR_UNKNOWN"}},
    {220,
     "WEBHELPERPLUGIN",
     13,
     {"WEBHELPERPLUGIN_ERROR_MISSING_DEPENDENCY", "WEBHELPERPLUGIN_ERROR_INVALID_STATE",
      "WEBHELPERPLUGIN_ERROR_UNKNOWN"}},
    {221,
     "SIMPLEBROWSER_POPUPDLG",
     12,
     {"SIMPLEBROWSER_POPUPDLG_ERROR_IPC_REGISTER_FAILURE", "SIMPLEBROWSER_POPUPDLG_ERROR_UNKNOWN"}},
    {222,
     "APPLOGCUSTOMCONFIG",
     13,
     {"APPLOGCUSTOMCONFIG_ERROR_CONFIG_FILE_NOT_READABLE",
      "APPLOGCUSTOMCONFIG_ERROR_UNABLE_TO_OPEN_CONFIG_FILE", "APPLOGCUSTOMCONFIG_ERROR_UNKNOWN"}},
};

const std::set<std::uint32_t> kPlaceholderSlots = {111, 125, 133, 134, 135, 136,
                                                   193, 194, 195, 196, 198};

Names NamesOf(const ResultCodeModule& module) {
    return {module.names, module.names + module.count};
}

Names ExpectedNames(const ModuleRow& row) {
    Names names;
    for (const char* const suffix :
         {"_SUCCESS", "_ERROR_NOT_IMPLEMENTED", "_ERROR_BAD_PARAMETER", "_ERROR_BAD_HANDLE",
          "_ERROR_MEMALLOC_FAILED", "_ERROR_NULL_POINTER", "_ERROR_INSUFFICIENT_BUFFER",
          "_ERROR_NOT_INITIALIZED", "_ERROR_ALREADY_INITIALIZED", "_ERROR_UNEXPECTED"}) {
        names.push_back(row.prefix + suffix);
    }
    names.insert(names.end(), row.ownNames.begin(), row.ownNames.end());
    return names;
}

class FilledModule : public testing::TestWithParam<ModuleRow> {};

TEST_P(FilledModule, HasTheCommonNamesAndThenItsOwn) {
    const ResultCodeModule& module = kResultCodeTable[GetParam().slot];
    ASSERT_EQ(module.count, GetParam().count);
    EXPECT_THAT(NamesOf(module), ElementsAreArray(ExpectedNames(GetParam())));
}

INSTANTIATE_TEST_SUITE_P(ResultCodeTable, FilledModule, testing::ValuesIn(kModuleRows),
                         [](const auto& module) { return module.param.prefix; });

TEST(ResultCodeTable, Has224Slots) {
    EXPECT_EQ(kResultCodeModuleCount, 224U);
    EXPECT_EQ(kResultCodeTable.size(), 224U);
}

TEST(ResultCodeTable, HasElevenPlaceholdersThatShareOneName) {
    const char* const* const shared = kResultCodeTable[111].names;
    for (const std::uint32_t slot : kPlaceholderSlots) {
        EXPECT_EQ(kResultCodeTable[slot].names, shared) << "slot " << slot;
        EXPECT_THAT(NamesOf(kResultCodeTable[slot]), ElementsAre("DUMMY_ERROR_NOT_IMPLEMENTED"))
            << "slot " << slot;
    }
}

TEST(ResultCodeTable, IsEmptyInEveryOtherSlot) {
    std::set<std::uint32_t> filled = kPlaceholderSlots;
    for (const ModuleRow& row : kModuleRows) {
        filled.insert(row.slot);
    }
    for (std::uint32_t slot = 0; slot < kResultCodeModuleCount; ++slot) {
        if (filled.count(slot) == 0) {
            EXPECT_EQ(kResultCodeTable[slot].count, 0U) << "slot " << slot;
            EXPECT_THAT(kResultCodeTable[slot].names, IsNull()) << "slot " << slot;
        }
    }
    EXPECT_EQ(filled.size(), 21U);
}

}  // namespace
