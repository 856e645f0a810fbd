#include "Screenshot.h"

#include <gtest/gtest.h>
#include <png.h>

#include <filesystem>

namespace {

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
