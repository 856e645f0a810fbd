#include "Screenshot.h"

#include <gtest/gtest.h>

namespace {

constexpr std::uint32_t kBlack = 0x000000;
constexpr std::uint32_t kGrey = 0x808080;
constexpr std::uint32_t kWhite = 0xFFFFFF;

}  // namespace

TEST(ScreenshotTest, ComparesEveryPixel) {
    const Screenshot picture{2, 1, {1, 2}};
    EXPECT_EQ(picture, (Screenshot{2, 1, {1, 2}}));
    EXPECT_NE(picture, (Screenshot{2, 1, {1, 3}}));
    EXPECT_NE(picture, (Screenshot{1, 2, {1, 2}}));
    EXPECT_EQ(picture.At(1, 0), 2U);
}

TEST(ScreenshotTest, LooksTheSameWithColoursThatAreRoundedOtherwise) {
    const Screenshot picture = Screenshot::Plain(5, 5, 0x808080);
    EXPECT_TRUE(LookTheSame(picture, Screenshot::Plain(5, 5, 0x828080)));
    EXPECT_TRUE(LookTheSame(picture, Screenshot::Plain(5, 5, 0x80807E)));
    EXPECT_FALSE(LookTheSame(picture, Screenshot::Plain(5, 5, 0x808380)));
    EXPECT_FALSE(LookTheSame(picture, Screenshot::Plain(5, 5, 0x7D8080)));
}

TEST(ScreenshotTest, LooksTheSameWithAnEdgeThatIsSmoothedOtherwise) {
    const Screenshot sharp = Screenshot::Plain(5, 5, kWhite).With(0, 0, 2, 5, kBlack);
    EXPECT_TRUE(LookTheSame(sharp, sharp.With(2, 1, 1, 3, kGrey)));
    EXPECT_TRUE(LookTheSame(sharp.With(2, 1, 1, 3, kGrey), sharp));
}

TEST(ScreenshotTest, LooksOtherwiseWithAnythingThatOnlyOneHas) {
    const Screenshot empty = Screenshot::Plain(5, 5, kWhite);
    const Screenshot lined = empty.With(2, 0, 1, 5, kBlack);
    EXPECT_FALSE(LookTheSame(empty, lined));
    EXPECT_FALSE(LookTheSame(lined, empty));
    EXPECT_FALSE(LookTheSame(empty, empty.With(4, 4, 1, 1, kBlack)));
    EXPECT_FALSE(LookTheSame(empty, Screenshot::Plain(5, 4, kWhite)));
    EXPECT_FALSE(LookTheSame(empty, {}));
}
