// The text of a server's "Set-Cookie" header, and the name of the cookie to find.
//
// Input: the name, a line feed, and the header.

#include <string>

#include "Check.h"
#include "CookieHeader.h"
#include "FuzzInput.h"
#include "FuzzTarget.h"

namespace {

bool StandsAt(const std::string& text, std::size_t position, const std::string& part) {
    for (std::size_t index = 0; index < part.size(); ++index) {
        if (position + index >= text.size() || text[position + index] != part[index]) {
            return false;
        }
    }
    return true;
}

/// A second implementation of the rule, byte by byte.
std::string Expected(const std::string& header, const std::string& name) {
    std::size_t match = 0;
    while (match < header.size() && !StandsAt(header, match, name)) {
        ++match;
    }
    if (name.empty() || match == header.size()) {
        return "";
    }
    std::string value;
    for (std::size_t index = match + 1; index < header.size(); ++index) {
        if (header[index] == ';') {
            return value;
        }
        if (index > match + name.size()) {
            value += header[index];
        }
    }
    return "";
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzInput input(data, size);
    const std::string name = input.TakeLine();
    const std::string header = input.TakeRest();

    const std::string value = ExtractCookieValue(header, name);
    TK_CHECK(value == Expected(header, name));
    if (!value.empty()) {
        TK_CHECK(value.find(';') == std::string::npos);
        TK_CHECK(header.find(value + ";") != std::string::npos);
        TK_CHECK(header.find(name) != std::string::npos);
    }
    return 0;
}
