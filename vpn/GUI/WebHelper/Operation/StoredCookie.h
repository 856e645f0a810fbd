#pragma once

#include <string>

/// A cookie in the engine's store. Its value is a secret: it is never logged.
struct StoredCookie {
    std::string name;
    std::string value;
    std::string domain;
    std::string path;
    bool isSecure = false;  ///< only secure connections can set and read it
};

/// True if they have the same name, value, domain and path.
inline bool operator==(const StoredCookie& left, const StoredCookie& right) {
    return left.name == right.name && left.value == right.value && left.domain == right.domain &&
           left.path == right.path;
}
