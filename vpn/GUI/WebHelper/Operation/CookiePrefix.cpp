#include "CookiePrefix.h"

#include <strings.h>

#include <string_view>

namespace {

bool BeginsWith(const std::string& name, std::string_view prefix) {
    return strncasecmp(name.c_str(), prefix.data(), prefix.size()) == 0;
}

bool IsForSecureConnections(const std::string& name) {
    return BeginsWith(name, "__Secure-");
}

bool IsForOneHost(const std::string& name) {
    return BeginsWith(name, "__Host-");
}

// The domain of a cookie with the attribute "Domain" begins with a dot.
bool IsSetForOneHost(const StoredCookie& cookie) {
    return cookie.path == "/" && cookie.domain.rfind('.', 0) != 0;
}

}  // namespace

bool HasPrefix(const std::string& cookieName) {
    return IsForSecureConnections(cookieName) || IsForOneHost(cookieName);
}

bool KeepsPrefixPromise(const StoredCookie& cookie) {
    if (IsForOneHost(cookie.name)) {
        return cookie.isSecure && IsSetForOneHost(cookie);
    }
    return cookie.isSecure || !IsForSecureConnections(cookie.name);
}
