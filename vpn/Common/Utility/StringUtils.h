#pragma once

#include <string>
#include <string_view>
#include <vector>

/// Helpers for byte strings: UTF-8 passes through untouched, and each gives a new string. Texts
/// may hold zero bytes; none may be a null pointer. Any thread.
class CStringUtils {
public:
    virtual ~CStringUtils() = default;

    /// Without its trailing line breaks, or without all of its trailing white space.
    static std::string TrimRight(std::string_view text, bool lineBreaksOnly);

    /// Without white space at either end.
    static std::string Trim(std::string_view text);

    /// Each byte as the C library's locale maps it.
    static std::string ToLower(std::string_view text);

    /// As printf writes it, cut at 1023 bytes.
    static std::string Format(const char* format, ...) __attribute__((format(printf, 1, 2)));

    static bool StartsWith(std::string_view text, std::string_view prefix);
    static bool EndsWith(std::string_view text, std::string_view suffix);

    /// What stands in place of an occurrence is not searched again. An empty from replaces nothing.
    static std::string ReplaceAll(std::string_view text, std::string_view from,
                                  std::string_view to);

    /// Cuts at every delimiter; the pieces, empty ones too, are one more than the delimiters.
    static std::vector<std::string> Split(std::string_view text, char delimiter);

    /// Whether the text matches a pattern in which "*" stands for any run of bytes, also for none.
    /// Takes time in proportion to the length of both.
    static bool MatchWildcard(std::string_view text, std::string_view pattern);
};
