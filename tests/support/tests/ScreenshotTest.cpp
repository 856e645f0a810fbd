#include "Screenshot.h"

#include <gtest/gtest.h>
#include <png.h>

#include <cstdlib>
#include <filesystem>

namespace {

constexpr std::uint32_t kBlack = 0x000000;
constexpr std::uint32_t kGrey = 0x808080;
constexpr std::uint32_t kWhite = 0xFFFFFF;

constexpr char kPath[] = "/opt/screenshot-test.png";

}  // namespace

TEST(ScreenshotTest, WritesItsPixelsAsPng) {
    const Screenshot picture{2, 1, {0x00FF8001, 0x000000FF}};
    ASSERT_TRUE(picture.WritePng(kPath));

    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    ASSERT_NE(png_image_begin_read_from_file(&image, kPath), 0);
    EXPECT_EQ(image.width, 2U);
    EXPECT_EQ(image.height, 1U);
    image.format = PNG_FORMAT_RGB;
    png_byte bytes[6] = {};
    ASSERT_NE(png_image_finish_read(&image, nullptr, bytes, 0, nullptr), 0);
    const png_byte expected[] = {0xFF, 0x80, 0x01, 0, 0, 0xFF};
    EXPECT_TRUE(std::equal(bytes, bytes + 6, expected));
    std::filesystem::remove(kPath);
}

TEST(ScreenshotTest, SaysWhenTheFileCannotBeWritten) {
    EXPECT_FALSE((Screenshot{1, 1, {0}}.WritePng("/no/such/folder/a.png")));
}

TEST(ScreenshotTest, ComparesEveryPixel) {
    const Screenshot picture{2, 1, {1, 2}};
    EXPECT_EQ(picture, (Screenshot{2, 1, {1, 2}}));
    EXPECT_NE(picture, (Screenshot{2, 1, {1, 3}}));
    EXPECT_NE(picture, (Screenshot{1, 2, {1, 2}}));
    EXPECT_EQ(picture.At(1, 0), 2U);
}

TEST(ScreenshotTest, IsPaintedInOneColourAndInRectangles) {
    const Screenshot plain = Screenshot::Plain(3, 2, 7);
    EXPECT_EQ(plain, (Screenshot{3, 2, {7, 7, 7, 7, 7, 7}}));
    EXPECT_EQ(plain.With(1, 0, 2, 1, 9), (Screenshot{3, 2, {7, 9, 9, 7, 7, 7}}));
    EXPECT_EQ(plain.With(0, 0, 3, 2, 9), Screenshot::Plain(3, 2, 9));
}

TEST(ScreenshotTest, IsKeptOnlyWhereAPersonAskedForIt) {
    const Screenshot picture = Screenshot::Plain(1, 1, 7);
    unsetenv("TK_SCREENSHOTS");
    EXPECT_TRUE(picture.Keep("screenshot-test"));
    setenv("TK_SCREENSHOTS", "/opt", 1);
    EXPECT_FALSE(std::filesystem::exists(kPath));
    EXPECT_TRUE(picture.Keep("screenshot-test"));
    EXPECT_TRUE(std::filesystem::remove(kPath));
    setenv("TK_SCREENSHOTS", "/no/such/folder", 1);
    EXPECT_FALSE(picture.Keep("screenshot-test"));
    unsetenv("TK_SCREENSHOTS");
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
