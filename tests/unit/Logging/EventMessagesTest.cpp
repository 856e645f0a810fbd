#include "EventMessages.h"

#include <gmock/gmock.h>

#include <string>
#include <utility>

namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::Field;

struct EventMessageRow {
    std::uint32_t identifier;
    std::string name;
    std::uint32_t severity;
    std::string format;
};

const EventMessageRow kLogRows[] = {
    {0, "MID_UNKNOWN", 5, "%s"},
    {1, "MID_DEBUG_MESSAGE", 7, "Function: %s\nFile: %s\nLine: %d\n%s"},
    {2, "MID_DEBUG_RETURN_CODE", 7,
     "Function: %s\nFile: %s\nLine: %d\nInvoked Function: %s\nReturn Code: %d (0x%.8X)\n"
     "Description: %s\n%s"},
    {3, "MID_VERBOSE_MESSAGE", 7, "Function: %s\nFile: %s\nLine: %d\n%s"},
};

void ExpectDefault(std::uint32_t identifier) {
    const EventMessage& message = FindEventMessage(identifier);
    EXPECT_STREQ(message.name, "UNKNOWN") << identifier;
    EXPECT_EQ(message.severity, 7U) << identifier;
    EXPECT_STREQ(message.format, "") << identifier;
}

TEST(EventMessages, OfTheLogAreFour) {
    for (const EventMessageRow& row : kLogRows) {
        const EventMessage& message = FindEventMessage(row.identifier);
        EXPECT_EQ(message.name, row.name);
        EXPECT_EQ(message.severity, row.severity) << row.name;
        EXPECT_EQ(message.format, row.format);
    }
    ExpectDefault(4);
}

TEST(EventMessages, StandInElevenGroupsSearchedInOrder) {
    const auto range = [](std::uint32_t base, std::uint32_t count) {
        return AllOf(Field(&EventMessageGroup::base, base),
                     Field(&EventMessageGroup::count, count));
    };
    EXPECT_THAT(kEventMessageGroups,
                ElementsAre(range(0, 4), range(10, 6), range(2000, 151), range(3000, 34),
                            range(4000, 2), range(5000, 21), range(5900, 23), range(6100, 18),
                            range(6200, 7), range(6300, 1), range(7000, 8)));
}

TEST(EventMessages, OfOtherComponentsAreTheDefaultFromBorderToBorder) {
    for (const auto& [base, end] : {std::pair{10U, 16U},
                                    {2000U, 2151U},
                                    {3000U, 3034U},
                                    {4000U, 4002U},
                                    {5000U, 5021U},
                                    {5900U, 5923U},
                                    {6100U, 6118U},
                                    {6200U, 6207U},
                                    {6300U, 6301U},
                                    {7000U, 7008U}}) {
        for (std::uint32_t identifier = base - 1; identifier <= end; ++identifier) {
            ExpectDefault(identifier);
        }
    }
}

TEST(EventMessages, OfUnknownIdentifiersAreTheDefault) {
    ExpectDefault(100);
    ExpectDefault(0x7FFFFFFF);
    ExpectDefault(0xFFFFFFFF);
}

}  // namespace
