#include "Screenshot.h"

#include <png.h>

#include <tuple>

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

bool operator==(const Screenshot& left, const Screenshot& right) {
    return std::tie(left.width, left.height, left.pixels) ==
           std::tie(right.width, right.height, right.pixels);
}

bool operator!=(const Screenshot& left, const Screenshot& right) {
    return !(left == right);
}
