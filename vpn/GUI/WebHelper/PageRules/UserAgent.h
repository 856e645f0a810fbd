#pragma once

#include <optional>
#include <string>

/// A user agent as the engine wants it; the version may be empty or hold further slashes.
struct UserAgent {
    std::string applicationName;
    std::string applicationVersion;
};

/// Splits a text at its first "/"; nothing when it has none.
std::optional<UserAgent> SplitUserAgent(const std::string& text);
