#include "ResultCodes.h"

#include <gmock/gmock.h>

#include <tuple>

#include "ResultCodeTable.h"

namespace {

using testing::IsNull;
using testing::StrEq;

class ResultCodeNames : public testing::Test {
protected:
    ResultCodeNames() { SetResultCodeTable(kResultCodeTable.data(), kResultCodeModuleCount); }
    ~ResultCodeNames() override { SetResultCodeTable(nullptr, 0); }
};

TEST_F(ResultCodeNames, AreFoundByModuleAndIndex) {
    EXPECT_THAT(GetResultCodeName(0xFEDE000A),
                StrEq("APPLOGCUSTOMCONFIG_ERROR_CONFIG_FILE_NOT_READABLE"));
    EXPECT_THAT(GetResultCodeName(0xFE9D0000), StrEq("CSTORAGEPATH_SUCCESS"));
    EXPECT_THAT(GetResultCodeName(0xFED8000D), StrEq("JSONIPCCLIENT_ERROR_UNKNOWN"));
}

TEST_F(ResultCodeNames, KeepTheirDescription) {
    EXPECT_THAT(GetResultCodeName(0xFE00000B),
                StrEq("GLOBAL_ERROR_MGMT_TUNNEL_TERMINATING:used by Agent to signal to user tunnel "
                      "Downloader that start"));
}

TEST_F(ResultCodeNames, FallBackToTheModulesLastNamePastItsEnd) {
    EXPECT_THAT(GetResultCodeName(0xFEDE000D), StrEq("APPLOGCUSTOMCONFIG_ERROR_UNKNOWN"));
    EXPECT_THAT(GetResultCodeName(0xFEDE0063), StrEq("APPLOGCUSTOMCONFIG_ERROR_UNKNOWN"));
    EXPECT_THAT(GetResultCodeName(0xFE00FFFF), StrEq("GLOBAL_ERROR_UNKNOWN"));
}

TEST_F(ResultCodeNames, AreMissingForEmptySlotsAndModulesOutsideTheTable) {
    EXPECT_THAT(GetResultCodeName(0xFEDF0001), IsNull());
    EXPECT_THAT(GetResultCodeName(0xFE010000), IsNull());
    EXPECT_THAT(GetResultCodeName(0xFEE00001), IsNull());
    EXPECT_THAT(GetResultCodeName(0xFEFF0000), IsNull());
}

TEST_F(ResultCodeNames, OfAPlaceholderAreOneForEveryIndex) {
    EXPECT_THAT(GetResultCodeName(0xFE6F0000), StrEq("DUMMY_ERROR_NOT_IMPLEMENTED"));
    EXPECT_THAT(GetResultCodeName(0xFE6F0005), StrEq("DUMMY_ERROR_NOT_IMPLEMENTED"));
}

TEST_F(ResultCodeNames, NeedEveryMarkerBit) {
    for (int bit = 25; bit <= 31; ++bit) {
        EXPECT_THAT(GetResultCodeName(0xFE000001 & ~(1U << bit)), IsNull()) << "bit " << bit;
    }
    EXPECT_THAT(GetResultCodeName(0x7E000001), IsNull());
    EXPECT_THAT(GetResultCodeName(13), IsNull());
    EXPECT_THAT(GetResultCodeName(0), IsNull());
}

TEST_F(ResultCodeNames, IgnoreBit24) {
    EXPECT_THAT(GetResultCodeName(0xFF000002), StrEq("GLOBAL_ERROR_BAD_PARAMETER"));
}

TEST_F(ResultCodeNames, AreMissingWithoutATableOrWithoutModules) {
    SetResultCodeTable(nullptr, kResultCodeModuleCount);
    EXPECT_THAT(GetResultCodeName(0xFE000002), IsNull());
    SetResultCodeTable(kResultCodeTable.data(), 0);
    EXPECT_THAT(GetResultCodeName(0xFE000002), IsNull());
}

TEST_F(ResultCodeNames, StopAtTheModuleCount) {
    SetResultCodeTable(kResultCodeTable.data(), 222);
    EXPECT_THAT(GetResultCodeName(0xFEDD0000), StrEq("SIMPLEBROWSER_POPUPDLG_SUCCESS"));
    EXPECT_THAT(GetResultCodeName(0xFEDE0000), IsNull());
}

TEST_F(ResultCodeNames, FallBackOverAMissingName) {
    const char* const names[] = {nullptr, "LAST"};
    const ResultCodeModule module{2, names};
    SetResultCodeTable(&module, 1);
    EXPECT_THAT(GetResultCodeName(0xFE000000), StrEq("LAST"));
}

TEST_F(ResultCodeNames, AreMissingWhenTheLastNameIsToo) {
    const char* const names[] = {"FIRST", nullptr};
    const ResultCodeModule module{2, names};
    SetResultCodeTable(&module, 1);
    EXPECT_THAT(GetResultCodeName(0xFE000001), IsNull());
    EXPECT_THAT(GetResultCodeName(0xFE000002), IsNull());
}

TEST_F(ResultCodeNames, AndValuesOfTheCodesOfThisProgramAreThoseOfTheSuite) {
    EXPECT_EQ(sizeof(ResultCode), 8U);
    EXPECT_EQ(kSuccess, 0UL);
    const std::tuple<ResultCode, ResultCode, const char*> codes[] = {
        {GLOBAL_ERROR_BAD_PARAMETER, 0xFE000002, "GLOBAL_ERROR_BAD_PARAMETER"},
        {GLOBAL_ERROR_UNEXPECTED, 0xFE000009, "GLOBAL_ERROR_UNEXPECTED"},
        {CSTORAGEPATH_ERROR_NO_INSTANCE, 0xFE9D000A, "CSTORAGEPATH_ERROR_NO_INSTANCE"},
        {CSTORAGEPATH_ERROR_TEMPPATH_TOO_BIG, 0xFE9D000C, "CSTORAGEPATH_ERROR_TEMPPATH_TOO_BIG"},
        {JSONIPCCLIENT_ERROR_BAD_PARAMETER, 0xFED80002, "JSONIPCCLIENT_ERROR_BAD_PARAMETER"},
        {JSONIPCCLIENT_ERROR_IOSERVICE_THREAD_FAILURE, 0xFED8000A,
         "JSONIPCCLIENT_ERROR_IOSERVICE_THREAD_FAILURE"},
        {JSONIPCCLIENT_ERROR_OPEN_SOCKET_FAILURE, 0xFED8000C,
         "JSONIPCCLIENT_ERROR_OPEN_SOCKET_FAILURE"},
        {BROWSERIPCCLIENT_ERROR_ALREADY_INITIALIZED, 0xFEDA0008,
         "BROWSERIPCCLIENT_ERROR_ALREADY_INITIALIZED"},
        {BROWSERIPCCLIENT_ERROR_SERIALIZE_FAILURE, 0xFEDA000A,
         "BROWSERIPCCLIENT_ERROR_SERIALIZE_FAILURE"},
        {APPLOGCUSTOMCONFIG_ERROR_UNEXPECTED, 0xFEDE0009, "APPLOGCUSTOMCONFIG_ERROR_UNEXPECTED"},
        {APPLOGCUSTOMCONFIG_ERROR_CONFIG_FILE_NOT_READABLE, 0xFEDE000A,
         "APPLOGCUSTOMCONFIG_ERROR_CONFIG_FILE_NOT_READABLE"},
        {APPLOGCUSTOMCONFIG_ERROR_UNABLE_TO_OPEN_CONFIG_FILE, 0xFEDE000B,
         "APPLOGCUSTOMCONFIG_ERROR_UNABLE_TO_OPEN_CONFIG_FILE"},
    };
    for (const auto& [code, value, name] : codes) {
        EXPECT_EQ(code, value) << name;
        EXPECT_STREQ(GetResultCodeName(static_cast<std::uint32_t>(code)), name);
    }
}

}  // namespace
