#include "MsgWithArg.h"

#include <gtest/gtest.h>

#include "CatalogFixture.h"

namespace {

class MessagesWithArguments : public CatalogFixture {};

/// The message with the arguments, untranslated.
std::string Rendered(const std::string& messageId, const std::vector<std::string>& arguments) {
    MsgWithArg message(messageId);
    for (const std::string& argument : arguments) {
        message.addArg(argument);
    }
    std::string text = "old";
    message.format(text, false);
    return text;
}

const std::vector<std::string>& TwelveArguments() {
    static const std::vector<std::string> arguments = {"a", "b", "c", "d", "e", "f",
                                                       "g", "h", "i", "j", "k", "l"};
    return arguments;
}

TEST(MsgWithArgObject, IsEmptyWithoutAnIdentifier) {
    const MsgWithArg message;
    EXPECT_TRUE(message.isEmpty());
    EXPECT_STREQ(message.getMessageId(), "");
    std::string text = "old";
    message.format(text, true);
    EXPECT_EQ(text, "");
}

TEST(MsgWithArgObject, StaysEmptyWithArguments) {
    EXPECT_EQ(Rendered("", {"a"}), "");
}

TEST(MsgWithArgObject, KnowsItsIdentifier) {
    MsgWithArg message("first");
    EXPECT_FALSE(message.isEmpty());
    EXPECT_STREQ(message.getMessageId(), "first");
    message.setMessageId("second");
    EXPECT_STREQ(message.getMessageId(), "second");
}

TEST(MsgWithArgObject, ForgetsItsArguments) {
    MsgWithArg message("<%s>");
    message.addArg("a");
    message.clearArgs();
    std::string text;
    message.format(text, false);
    EXPECT_EQ(text, "<%s>");
}

TEST(MsgWithArgObject, TakesArgumentsOfEitherStringType) {
    MsgWithArg message("%s %s %s.");
    message.addArg(std::string("a"));
    message.addArg("b");
    message.addArg(nullptr);
    std::string text;
    message.format(text, false);
    EXPECT_EQ(text, "a b .");
}

struct RenderingCase {
    const char* description;
    const char* messageId;
    std::vector<std::string> arguments;
    const char* text;
};

void PrintTo(const RenderingCase& example, std::ostream* out) {
    *out << example.description;
}

class MsgWithArgRendering : public testing::TestWithParam<RenderingCase> {};

TEST_P(MsgWithArgRendering, PutsTheArgumentsIn) {
    EXPECT_EQ(Rendered(GetParam().messageId, GetParam().arguments), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(
    OfMessages, MsgWithArgRendering,
    testing::Values(
        RenderingCase{"NumbersAsStrings", "%d files in %s", {"3", "home"}, "3 files in home"},
        RenderingCase{
            "EveryKindOfConversion", "%u %x %c %f %n.", {"a", "b", "c", "d", "e"}, "a b c d e."},
        RenderingCase{"ADoubledPercentIsAConversion",
                      "%s is 50%% done",
                      {"it", "of all"},
                      "it is 50of all done"},
        RenderingCase{"PositionsOfTheTranslator", "%2$s before %1$s", {"a", "b"}, "b before a"},
        RenderingCase{"PositionsOfOtherConversions", "%2$d before %1$u", {"a", "b"}, "b before a"},
        RenderingCase{"OneArgumentTwice", "%1$s and %1$s", {"a"}, "a and a"},
        RenderingCase{"OnlyALaterArgument", "<%3$s>", {"a", "b", "c"}, "<c>"},
        RenderingCase{"MissingArgumentsAsNothing", "<%s><%s><%s>", {"a"}, "<a><><>"},
        RenderingCase{"TooManyArguments", "<%s>", {"a", "b"}, "<a>"},
        RenderingCase{"Widths", "<%3d><%1$4s>", {"a", "b"}, "<  a><   a>"},
        RenderingCase{"WidthsInOrder", "<%3d><%3s>", {"a", "b"}, "<  a><  b>"},
        RenderingCase{"OnlyTheCharacterBehindThePositionIsReplaced", "%ld", {"a"}, "ad"},
        RenderingCase{"FlagsAreReplacedLikeConversions", "%-5d", {"a"}, "a5d"},
        RenderingCase{"APercentAtTheEnd", "%s: 100%", {"done"}, "done: 100%"},
        RenderingCase{"APositionAtTheEnd", "%s: 100%12", {"done"}, "done: 100%12"},
        RenderingCase{"NoConversion", "text", {"a"}, "text"},
        RenderingCase{"PercentSignsOfArguments", "%s", {"100% %s %n"}, "100% %s %n"},
        RenderingCase{"ReferencesInTheText", "&#60;%s&#62;", {"a"}, "<a>"},
        RenderingCase{"ReferencesInAnArgument", "%s", {"&#60;"}, "<"},
        RenderingCase{"ReferencesWithoutArguments", "&#60;%s&#62;", {}, "<%s>"},
        RenderingCase{"DoubledPercentsWithoutArguments", "100%%", {}, "100%%"}),
    [](const auto& test) { return test.param.description; });

TEST(MsgWithArgRendering, UsesTenArgumentsAtMost) {
    EXPECT_EQ(Rendered("%s%s%s%s%s%s%s%s%s%s.", TwelveArguments()), "abcdefghij.");
    EXPECT_EQ(Rendered("%s%s%s%s%s%s%s%s%s%s%s%s.", TwelveArguments()), "abcdefghij.");
    EXPECT_EQ(Rendered("<%10$s><%11$s><%12$s>", TwelveArguments()), "<j><><>");
}

TEST(MsgWithArgRendering, SurvivesSenselessPositions) {
    EXPECT_EQ(Rendered("<%0$s>", {"a"}), "<%0$s>");
    EXPECT_EQ(Rendered("<%$s>", {"a"}), "<%$s>");
    EXPECT_EQ(Rendered("<%1$2$s>", {"a"}), "<%1$2$s>");
    EXPECT_EQ(Rendered("<%99999999999999999999$s>", {"a"}), "<%99999999999999999999$s>");
    EXPECT_EQ(Rendered("<%1000$s>", {"a"}), "<>");
}

TEST(MsgWithArgRendering, SurvivesHugeWidths) {
    EXPECT_EQ(Rendered("%9999s", {"a"}), std::string(2047, ' '));
    EXPECT_EQ(Rendered("<%99999s>", {"a"}), "<%99999s>");
    EXPECT_EQ(Rendered("%1$9999s", {"a"}), std::string(2047, ' '));
    EXPECT_EQ(Rendered("<%1$99999s>", {"a"}), "<%1$99999s>");
    EXPECT_EQ(Rendered("<%1$99999999999s>", {"a"}), "<%1$99999999999s>");
}

TEST(MsgWithArgRendering, IsCutAt2047Bytes) {
    EXPECT_EQ(Rendered("%s", {std::string(3000, 'x')}), std::string(2047, 'x'));
}

TEST_F(MessagesWithArguments, AreTranslatedFromTheCurrentCatalogue) {
    InstallCatalog("Other", "utf-8", "msgid \"%s of %s\"\nmsgstr \"von %2$s: %1$s\"\n");
    ASSERT_TRUE(MsgCatalog::setCatalog("Other"));
    MsgWithArg message("%s of %s");
    message.addArg("a");
    message.addArg("b");
    std::string text;
    message.format(text, true);
    EXPECT_EQ(text, "von b: a");
    message.format(text, false);
    EXPECT_EQ(text, "a of b");
}

TEST_F(MessagesWithArguments, AreTranslatedFromTheirOwnCatalogue) {
    InstallCatalog("Other", "utf-8", "msgid \"one\"\nmsgstr \"uno\"\n");
    std::string text;
    MsgWithArg("one", "Other").format(text, true);
    EXPECT_EQ(text, "uno");

    MsgWithArg message("one");
    message.setCatalog("Tunnelkeep");
    message.format(text, true);
    EXPECT_EQ(text, "eins");
    message.setCatalog("");
    message.format(text, true);
    EXPECT_EQ(text, "eins");
}

}  // namespace
