#include "UserAgent.h"

std::optional<UserAgent> SplitUserAgent(const std::string& text) {
    const std::size_t slash = text.find('/');
    if (slash == std::string::npos) {
        return std::nullopt;
    }
    return UserAgent{text.substr(0, slash), text.substr(slash + 1)};
}
