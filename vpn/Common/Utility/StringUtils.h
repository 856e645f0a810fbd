#pragma once

#include <string>
#include <string_view>
#include <vector>

/// Helpers for byte strings. UTF-8 passes through unchanged. Each function returns a new string.
/// Texts may contain zero bytes, but must not be null pointers. Any thread.
class CStringUtils {
public:
    virtual ~CStringUtils() = default;

    /// Removes trailing line breaks only, or all trailing white space.
    static std::string TrimRight(std::string_view text, bool lineBreaksOnly);

    /// Removes white space at both ends.
    static std::string Trim(std::string_view text);

    /// Maps each byte to lower case, as the C library's locale defines it.
    static std::string ToLower(std::string_view text);

    /// Formats as printf does; the result is cut at 1023 bytes.
    static std::string Format(const char* format, ...) __attribute__((format(printf, 1, 2)));

    static bool StartsWith(std::string_view text, std::string_view prefix);
    static bool EndsWith(std::string_view text, std::string_view suffix);

    /// Replaces every occurrence of from. The inserted text is not searched again. If from is
    /// empty, nothing is replaced.
    static std::string ReplaceAll(std::string_view text, std::string_view from,
                                  std::string_view to);

    /// Splits at every delimiter. Empty pieces are kept, so there is one piece more than
    /// delimiters.
    static std::vector<std::string> Split(std::string_view text, char delimiter);

    /// Whether the text matches a pattern in which "*" stands for any number of bytes, also none.
    /// The time is linear in the lengths of both.
    static bool MatchWildcard(std::string_view text, std::string_view pattern);
};
