#include "CharacterReferences.h"

#include <charconv>
#include <optional>
#include <string_view>

namespace {

// Value of a digit, or nothing when it is none of the base.
std::optional<unsigned> DigitValue(char digit, int base) {
    unsigned value = 0;
    const auto [end, error] = std::from_chars(&digit, &digit + 1, value, base);
    return error == std::errc() && end == &digit + 1 ? std::optional(value) : std::nullopt;
}

// Character of the code between "&#" and ";"; the code may be of any length.
std::optional<char> CharacterOf(std::string_view code) {
    const bool isHexadecimal = !code.empty() && (code.front() == 'x' || code.front() == 'X');
    if (isHexadecimal) {
        code.remove_prefix(1);
    }
    if (code.empty()) {
        return std::nullopt;
    }
    const int base = isHexadecimal ? 16 : 10;
    unsigned value = 0;
    for (const char character : code) {
        const std::optional<unsigned> digit = DigitValue(character, base);
        if (!digit) {
            return std::nullopt;
        }
        value = (value * static_cast<unsigned>(base) + *digit) & 0xFF;
    }
    return static_cast<char>(value);
}

}  // namespace

void DecodeCharacterReferences(std::string& text) {
    std::string decoded = text;
    for (;;) {
        const std::size_t start = decoded.find("&#");
        const std::size_t end = start != std::string::npos ? decoded.find(';', start) : start;
        if (end == std::string::npos) {
            break;
        }
        const std::string_view code = std::string_view(decoded).substr(start + 2, end - start - 2);
        const std::optional<char> character = CharacterOf(code);
        if (!character) {
            return;
        }
        decoded.replace(start, end - start + 1, 1, *character);
    }
    text = decoded;
}
