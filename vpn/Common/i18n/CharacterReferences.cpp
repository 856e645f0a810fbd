#include "CharacterReferences.h"

#include <charconv>
#include <optional>
#include <string_view>

namespace {

// Returns the value of a digit, or nothing if it is not a digit of the base.
std::optional<unsigned> DigitValue(char digit, int base) {
    unsigned value = 0;
    const std::errc error = std::from_chars(&digit, &digit + 1, value, base).ec;
    return error == std::errc() ? std::optional(value) : std::nullopt;
}

// Returns the character for the code between "&#" and ";", or nothing if the code is not a number.
// The code may have any length.
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

// Moves the text before the next reference from rest to decoded, and removes the "&#". Returns
// false if no reference follows. Characters that were decoded before may be part of the next "&#".
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

// Continues after each reference. Searching from the start again would take quadratic time.
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
