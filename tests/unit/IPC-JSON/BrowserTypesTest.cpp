#include "BrowserTypes.h"

#include <gmock/gmock.h>

#include <map>

using ::testing::ContainerEq;

namespace {

template <class TypeNames>
std::map<std::int32_t, std::string> ByValue(const TypeNames& names) {
    std::map<std::int32_t, std::string> byValue;
    for (const auto& [type, name] : names) {
        byValue[static_cast<std::int32_t>(type)] = name;
    }
    return byValue;
}

TEST(BrowserTypes, NamesEveryOperation) {
    EXPECT_THAT(ByValue(OperationTypeNames), ContainerEq(std::map<std::int32_t, std::string>{
                                                 {0, "browse"},
                                                 {-1, "browse_for_cookie"},
                                                 {-2, "terminate"},
                                                 {-3, "reset"},
                                                 {-4, "undefined"},
                                             }));
}

TEST(BrowserTypes, NamesEveryResultAndSkipsMinusEight) {
    EXPECT_THAT(ByValue(ResultTypeNames), ContainerEq(std::map<std::int32_t, std::string>{
                                              {0, "ready"},
                                              {-1, "cancel"},
                                              {-2, "success"},
                                              {-3, "success_with_cookie"},
                                              {-4, "error_cookie"},
                                              {-5, "error_navi"},
                                              {-6, "error_cert"},
                                              {-7, "error_timeout"},
                                              {-9, "error_client_terminated"},
                                              {-10, "error_unknown"},
                                              {-11, "undefined"},
                                          }));
}

TEST(BrowserTypes, ValuesAreThirtyTwoBitsAndSigned) {
    EXPECT_EQ(static_cast<std::int32_t>(BrowserOperationType::undefined), -4);
    EXPECT_EQ(static_cast<std::int32_t>(BrowserResultType::error_client_terminated), -9);
    EXPECT_EQ(sizeof(BrowserOperationType), 4U);
    EXPECT_EQ(sizeof(BrowserResultType), 4U);
}

}  // namespace
