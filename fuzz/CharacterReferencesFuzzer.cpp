// A text with numeric character references, as translations contain them.

#include <algorithm>
#include <optional>
#include <string>

#include "CharacterReferences.h"
#include "Check.h"
#include "FuzzInput.h"
#include "FuzzTarget.h"

namespace {

constexpr char kDecimalDigits[] = "0123456789";
constexpr char kHexadecimalDigits[] = "0123456789abcdefABCDEF";

/// The low 8 bits of a number of any length.
std::optional<char> Expected8Bits(const std::string& code) {
    const bool isHexadecimal = !code.empty() && (code[0] == 'x' || code[0] == 'X');
    const std::string digits = code.substr(isHexadecimal ? 1 : 0);
    const char* const allowed = isHexadecimal ? kHexadecimalDigits : kDecimalDigits;
    if (digits.empty() || digits.find_first_not_of(allowed) != std::string::npos) {
        return std::nullopt;
    }
    if (isHexadecimal) {
        const std::string lastTwo =
            digits.substr(digits.size() - std::min<std::size_t>(2, digits.size()));
        return static_cast<char>(std::stoul(lastTwo, nullptr, 16));
    }
    unsigned remainder = 0;
    for (const char digit : digits) {
        remainder = (remainder * 10 + static_cast<unsigned>(digit - '0')) % 256;
    }
    return static_cast<char>(remainder);
}

/// A second implementation of the rule, step by step.
std::string Expected(const std::string& text) {
    std::string decoded = text;
    for (;;) {
        const std::size_t start = decoded.find("&#");
        if (start == std::string::npos || decoded.find(';', start) == std::string::npos) {
            return decoded;
        }
        const std::size_t end = decoded.find(';', start);
        const auto character = Expected8Bits(decoded.substr(start + 2, end - start - 2));
        if (!character) {
            return text;
        }
        decoded = decoded.substr(0, start) + *character + decoded.substr(end + 1);
    }
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text = FuzzInput(data, size).TakeRest();
    std::string decoded = text;
    DecodeCharacterReferences(decoded);
    TK_CHECK(decoded == Expected(text));

    std::string again = decoded;
    DecodeCharacterReferences(again);
    TK_CHECK(again == decoded);
    return 0;
}
