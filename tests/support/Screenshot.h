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

    /// A picture of one colour.
    [[nodiscard]] static Screenshot Plain(unsigned width, unsigned height, std::uint32_t colour);

    /// The same picture with a rectangle of one colour, which lies within it.
    [[nodiscard]] Screenshot With(unsigned left, unsigned top, unsigned rectangleWidth,
                                  unsigned rectangleHeight, std::uint32_t colour) const;

    /// Returns whether the file could be written.
    [[nodiscard]] bool WritePng(const std::string& path) const;

    /// Writes NAME.png into the folder that TK_SCREENSHOTS names, for a person to look at; without
    /// that variable it does nothing. False when the file could not be written.
    [[nodiscard]] bool Keep(const std::string& name) const;
};

bool operator==(const Screenshot& left, const Screenshot& right);
bool operator!=(const Screenshot& left, const Screenshot& right);

/// Whether two programs may have drawn the same thing. Where a pixel differs, each of its colour
/// levels must lie in the range of the pixels around it in the other picture, because edges are
/// smoothed. A level may leave that range by two of 256, because gradients are rounded. Anything
/// that is in one picture only is found, down to a line of one pixel.
[[nodiscard]] bool LookTheSame(const Screenshot& left, const Screenshot& right);
