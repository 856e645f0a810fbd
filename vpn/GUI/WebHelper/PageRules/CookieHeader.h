#pragma once

#include <string>

/// Returns the value of a cookie in the text of a "Set-Cookie" header; empty if there is none. The
/// name is found anywhere in the text, also inside a longer name or a value. A value counts only if
/// a ";" ends it.
std::string ExtractCookieValue(const std::string& header, const std::string& name);
