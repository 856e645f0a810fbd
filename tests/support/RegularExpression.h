#pragma once

#include <string>
#include <vector>

/// The texts that the groups of a POSIX extended regular expression match, the whole match first; a
/// group that took no part gives an empty text. Empty if nothing matches. The C library's, because
/// the standard library's takes seconds to compile.
[[nodiscard]] std::vector<std::string> MatchedGroups(const std::string& text, const char* pattern);
