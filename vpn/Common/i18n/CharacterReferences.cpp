#include "CharacterReferences.h"

#include <charconv>
#include <optional>
#include <string_view>

namespace {

// Value of a digit, or nothing when it is none of the base.
std::optional<unsigned> DigitValue(char digit, int base) {
    unsigned value = 0;
    const std::errc error = std::from_chars(&digit, &digit + 1, value, base).ec;
    return error == std::errc() ? std::optional(value) : std::nullopt;
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

// Moves what stands before the next reference from the rest to the decoded text, and takes the "&#"
// away; false when none follows. The last character decoded may itself begin one.
bool MoveToReference(std::string& decoded, std::string_view& rest) {
    const std::string_view text = decoded;
    if (text.size() >= 2 && text.substr(text.size() - 2) == "&#") {
        decoded.resize(decoded.size() - 2);
        return true;
    }
    if (!text.empty() && text.back() == '&' && !rest.empty() && rest.front() == '#') {
        decoded.pop_back();
        rest.remove_prefix(1);
        return true;
    }
    const std::size_t start = rest.find("&#");
    decoded += rest.substr(0, start);
    rest.remove_prefix(start != std::string_view::npos ? start + 2 : rest.size());
    return start != std::string_view::npos;
}

}  // namespace

// Searching from the start again after each reference would take the square of the text's length.
void DecodeCharacterReferences(std::string& text) {
    std::string decoded;
    std::string_view rest = text;
    while (MoveToReference(decoded, rest)) {
        const std::size_t end = rest.find(';');
        if (end == std::string_view::npos) {
            decoded += "&#";
            break;
        }
        const std::optional<char> character = CharacterOf(rest.substr(0, end));
        if (!character) {
            return;
        }
        decoded += *character;
        rest.remove_prefix(end + 1);
    }
    text = decoded.append(rest);
}
