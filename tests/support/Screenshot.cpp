#include "Screenshot.h"

#include <png.h>

#include <algorithm>
#include <cstdlib>
#include <tuple>

namespace {

constexpr unsigned kColourShifts[] = {0, 8, 16};
constexpr unsigned kLevelsOff = 2;

unsigned Level(std::uint32_t pixel, unsigned shift) {
    return (pixel >> shift) & 0xFFU;
}

// Whether a colour's level is among those that the picture has at this position and next to it.
bool IsAmongNeighbours(const Screenshot& picture, unsigned x, unsigned y, unsigned shift,
                       unsigned level) {
    unsigned lowest = 0xFF;
    unsigned highest = 0;
    for (unsigned row = y == 0 ? 0 : y - 1; row <= std::min(y + 1, picture.height - 1); ++row) {
        for (unsigned column = x == 0 ? 0 : x - 1; column <= std::min(x + 1, picture.width - 1);
             ++column) {
            const unsigned neighbour = Level(picture.At(column, row), shift);
            lowest = std::min(lowest, neighbour);
            highest = std::max(highest, neighbour);
        }
    }
    return level + kLevelsOff >= lowest && level <= highest + kLevelsOff;
}

bool IsCoveredBy(const Screenshot& picture, const Screenshot& other) {
    for (unsigned y = 0; y < picture.height; ++y) {
        for (unsigned x = 0; x < picture.width; ++x) {
            const std::uint32_t pixel = picture.At(x, y);
            if (pixel == other.At(x, y)) {
                continue;
            }
            for (const unsigned shift : kColourShifts) {
                if (!IsAmongNeighbours(other, x, y, shift, Level(pixel, shift))) {
                    return false;
                }
            }
        }
    }
    return true;
}

}  // namespace

Screenshot Screenshot::Plain(unsigned width, unsigned height, std::uint32_t colour) {
    return {width, height, std::vector<std::uint32_t>(std::size_t{width} * height, colour)};
}

Screenshot Screenshot::With(unsigned left, unsigned top, unsigned rectangleWidth,
                            unsigned rectangleHeight, std::uint32_t colour) const {
    Screenshot picture = *this;
    for (unsigned y = top; y < top + rectangleHeight; ++y) {
        std::fill_n(&picture.pixels[std::size_t{y} * width + left], rectangleWidth, colour);
    }
    return picture;
}

bool Screenshot::WritePng(const std::string& path) const {
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    image.width = width;
    image.height = height;
    image.format = PNG_FORMAT_RGB;
    std::vector<png_byte> bytes;
    bytes.reserve(pixels.size() * 3);
    for (const std::uint32_t pixel : pixels) {
        for (const unsigned shift : {16U, 8U, 0U}) {
            bytes.push_back(static_cast<png_byte>(pixel >> shift));
        }
    }
    return png_image_write_to_file(&image, path.c_str(), 0, bytes.data(), 0, nullptr) != 0;
}

bool Screenshot::Keep(const std::string& name) const {
    const char* const folder = std::getenv("TK_SCREENSHOTS");
    return folder == nullptr || WritePng(std::string(folder) + "/" + name + ".png");
}

bool operator==(const Screenshot& left, const Screenshot& right) {
    return std::tie(left.width, left.height, left.pixels) ==
           std::tie(right.width, right.height, right.pixels);
}

bool operator!=(const Screenshot& left, const Screenshot& right) {
    return !(left == right);
}

bool LookTheSame(const Screenshot& left, const Screenshot& right) {
    return left.width == right.width && left.height == right.height && IsCoveredBy(left, right) &&
           IsCoveredBy(right, left);
}
