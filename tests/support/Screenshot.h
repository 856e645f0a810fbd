#pragma once

#include <cstdint>
#include <string>
#include <vector>

/// A picture, one 0x00RRGGBB a pixel, row by row from the top.
struct Screenshot {
    unsigned width = 0;
    unsigned height = 0;
    std::vector<std::uint32_t> pixels;

    /// The pixel at a position within the picture.
    [[nodiscard]] std::uint32_t At(unsigned x, unsigned y) const { return pixels[y * width + x]; }

    /// Gives whether the file could be written.
    [[nodiscard]] bool WritePng(const std::string& path) const;
};

bool operator==(const Screenshot& left, const Screenshot& right);
bool operator!=(const Screenshot& left, const Screenshot& right);
