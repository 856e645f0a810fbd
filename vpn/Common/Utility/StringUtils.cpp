#include "StringUtils.h"

#include <algorithm>
#include <cctype>
#include <cstdarg>
#include <cstring>

#include "BoundedFormat.h"

namespace {

constexpr std::string_view kLineBreaks = "\n\r";
constexpr std::string_view kWhiteSpace = " \t\f\v\n\r";
constexpr std::size_t kFormatBufferSize = 1024;
constexpr std::size_t kNotFound = std::string_view::npos;

// memmem() takes linear time; string_view::find() compares again at every position.
std::size_t Find(std::string_view text, std::string_view part, std::size_t start) {
    const void* const found =
        memmem(text.data() + start, text.size() - start, part.data(), part.size());
    return found != nullptr
               ? static_cast<std::size_t>(static_cast<const char*>(found) - text.data())
               : kNotFound;
}

}  // namespace

std::string CStringUtils::TrimRight(std::string_view text, bool lineBreaksOnly) {
    const std::size_t last = text.find_last_not_of(lineBreaksOnly ? kLineBreaks : kWhiteSpace);
    return std::string(text.substr(0, last == kNotFound ? 0 : last + 1));
}

std::string CStringUtils::Trim(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of(kWhiteSpace), text.size()));
    return TrimRight(text, false);
}

std::string CStringUtils::ToLower(std::string_view text) {
    std::string lower(text);
    std::transform(lower.begin(), lower.end(), lower.begin(), [](char byte) {
        return static_cast<char>(std::tolower(static_cast<unsigned char>(byte)));
    });
    return lower;
}

std::string CStringUtils::Format(const char* format, ...) {
    char buffer[kFormatBufferSize] = "";
    std::va_list arguments;
    va_start(arguments, format);
    BoundedFormat(buffer, sizeof buffer, format, arguments);
    va_end(arguments);
    return buffer;
}

bool CStringUtils::StartsWith(std::string_view text, std::string_view prefix) {
    return text.substr(0, prefix.size()) == prefix;
}

bool CStringUtils::EndsWith(std::string_view text, std::string_view suffix) {
    return text.size() >= suffix.size() && text.substr(text.size() - suffix.size()) == suffix;
}

std::string CStringUtils::ReplaceAll(std::string_view text, std::string_view from,
                                     std::string_view to) {
    if (from.empty() || text.empty()) {
        return std::string(text);
    }
    std::string result;
    std::size_t start = 0;
    for (std::size_t found = Find(text, from, 0); found != kNotFound;
         found = Find(text, from, start)) {
        result.append(text, start, found - start).append(to);
        start = found + from.size();
    }
    return result.append(text, start);
}

std::vector<std::string> CStringUtils::Split(std::string_view text, char delimiter) {
    std::vector<std::string> pieces;
    std::size_t start = 0;
    for (std::size_t end = text.find(delimiter); end != kNotFound;
         end = text.find(delimiter, start)) {
        pieces.emplace_back(text.substr(start, end - start));
        start = end + 1;
    }
    pieces.emplace_back(text.substr(start));
    return pieces;
}

bool CStringUtils::MatchWildcard(std::string_view text, std::string_view pattern) {
    std::size_t textPosition = 0;
    std::size_t patternPosition = 0;
    while (textPosition < text.size()) {
        if (patternPosition == pattern.size()) {
            return false;
        }
        if (pattern[patternPosition] != '*') {
            if (pattern[patternPosition++] != text[textPosition++]) {
                return false;
            }
            continue;
        }
        patternPosition = pattern.find_first_not_of('*', patternPosition);
        if (patternPosition == kNotFound) {
            return true;
        }
        const std::size_t nextStar = pattern.find('*', patternPosition);
        const std::string_view segment =
            pattern.substr(patternPosition, nextStar - patternPosition);
        if (nextStar == kNotFound) {
            // Deliberately tests the whole text. The last segment may therefore overlap text that
            // the segments before it have matched: "abcd" matches "abc*bcd".
            return EndsWith(text, segment);
        }
        const std::size_t found = Find(text, segment, textPosition);
        if (found == kNotFound) {
            return false;
        }
        textPosition = found + segment.size();
        patternPosition = nextStar;
    }
    return pattern.find_first_not_of('*', patternPosition) == kNotFound;
}
