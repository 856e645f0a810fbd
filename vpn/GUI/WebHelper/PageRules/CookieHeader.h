#pragma once

#include <string>

/// Value of a cookie in the text of a "Set-Cookie" header, empty when there is none. The name is
/// found anywhere in the text, also inside a longer name or a value, and a value counts only when
/// a ";" ends it.
std::string ExtractCookieValue(const std::string& header, const std::string& name);
