#pragma once

#include <optional>
#include <string>

/// A user agent in the form that the engine takes. The version may be empty or contain more
/// slashes.
struct UserAgent {
    std::string applicationName;
    std::string applicationVersion;
};

/// Splits a text at its first "/". Returns nothing if the text has none.
std::optional<UserAgent> SplitUserAgent(const std::string& text);
