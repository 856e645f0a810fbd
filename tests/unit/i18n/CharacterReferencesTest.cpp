#include "CharacterReferences.h"

#include <gtest/gtest.h>

namespace {

struct ReferenceCase {
    const char* description;
    std::string text;
    std::string decoded;
};

void PrintTo(const ReferenceCase& example, std::ostream* out) {
    *out << example.description;
}

class CharacterReferences : public testing::TestWithParam<ReferenceCase> {};

TEST_P(CharacterReferences, AreDecoded) {
    std::string text = GetParam().text;
    DecodeCharacterReferences(text);
    EXPECT_EQ(text, GetParam().decoded);
}

INSTANTIATE_TEST_SUITE_P(
    InTexts, CharacterReferences,
    testing::Values(ReferenceCase{"DecimalAndHexadecimal", "&#65;&#x42;", "AB"},
                    ReferenceCase{"CapitalX", "&#X4a;&#X4A;", "JJ"},
                    ReferenceCase{"Nothing", "", ""},
                    ReferenceCase{"PlainText", "a & b # c; d", "a & b # c; d"},
                    ReferenceCase{"AmongText", "1 &#60; 2; 3", "1 < 2; 3"},
                    ReferenceCase{"CutToEightBits", "&#321;&#x141;", "AA"},
                    ReferenceCase{"CutToEightBitsWhateverTheLength",
                                  "&#18446744073709551681;&#x1000000000000000041;", "AA"},
                    ReferenceCase{"Zero", "a&#0;b", std::string("a\0b", 3)},
                    ReferenceCase{"HighByte", "&#228;", "\xe4"},
                    ReferenceCase{"LeadingZeros", "&#00065;", "A"},
                    ReferenceCase{"FromTheStartAgain", "&#38;#65;", "A"},
                    ReferenceCase{"FromTheStartAgainWithTheHash", "&&#35;65;", "A"},
                    ReferenceCase{"FromTheStartAgainAndAgain", "&#38;#38;#38;#65;", "A"},
                    ReferenceCase{"MadeOneWithoutEnd", "&#38;#65", "&#65"},
                    ReferenceCase{"NamedOnesAreNone", "&amp;&#65;", "&amp;A"}),
    [](const auto& test) { return test.param.description; });

class NoCharacterReferences : public testing::TestWithParam<ReferenceCase> {};

TEST_P(NoCharacterReferences, LeaveTheWholeTextUnchanged) {
    std::string text = GetParam().text;
    DecodeCharacterReferences(text);
    EXPECT_EQ(text, GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(
    InTexts, NoCharacterReferences,
    testing::Values(ReferenceCase{"LetterBehindTheDigits", "&#65;&#66a;", ""},
                    ReferenceCase{"LetterBeforeAGoodOne", "&#66a;&#65;", ""},
                    ReferenceCase{"HexadecimalDigitsInADecimalOne", "&#65;&#4a;", ""},
                    ReferenceCase{"NoHexadecimalDigit", "&#65;&#x4g;", ""},
                    ReferenceCase{"NoDigits", "&#65;&#;", ""},
                    ReferenceCase{"NoHexadecimalDigits", "&#65;&#x;", ""},
                    ReferenceCase{"Sign", "&#65;&#-65;", ""},
                    ReferenceCase{"PlusSign", "&#65;&#+65;", ""},
                    ReferenceCase{"Blank", "&#65;&# 65;", ""},
                    ReferenceCase{"DoubledHexadecimalMark", "&#65;&#x0x41;", ""},
                    ReferenceCase{"EndedByALaterOnesSemicolon", "&#65 &#66;", ""}),
    [](const auto& test) { return test.param.description; });

TEST(CharacterReferencesWithoutEnd, AreLeftAsTheyAre) {
    std::string text = "&#65";
    DecodeCharacterReferences(text);
    EXPECT_EQ(text, "&#65");
    text = "&#65;&#66";
    DecodeCharacterReferences(text);
    EXPECT_EQ(text, "A&#66");
}

// As long as a catalogue may be. Starting again for each of the references, this took minutes.
TEST(CharacterReferencesOfALongText, AreDecodedInOnePass) {
    constexpr std::size_t kCount = 100000;
    std::string text;
    for (std::size_t index = 0; index < kCount; ++index) {
        text += "&#38;#38;";
    }
    DecodeCharacterReferences(text);
    EXPECT_EQ(text, std::string(kCount, '&'));
}

}  // namespace
