#include "RegularExpression.h"

#include <regex.h>

#include <memory>
#include <stdexcept>

std::vector<std::string> MatchedGroups(const std::string& text, const char* pattern) {
    regex_t expression{};
    if (regcomp(&expression, pattern, REG_EXTENDED) != 0) {
        throw std::invalid_argument(pattern);
    }
    const std::unique_ptr<regex_t, void (*)(regex_t*)> owner(&expression, regfree);
    std::vector<regmatch_t> matches(expression.re_nsub + 1);
    if (regexec(&expression, text.c_str(), matches.size(), matches.data(), 0) != 0) {
        return {};
    }
    std::vector<std::string> groups;
    groups.reserve(matches.size());
    for (const regmatch_t& match : matches) {
        groups.push_back(match.rm_so < 0
                             ? std::string()
                             : text.substr(static_cast<std::size_t>(match.rm_so),
                                           static_cast<std::size_t>(match.rm_eo - match.rm_so)));
    }
    return groups;
}
