#pragma once

#include <string>

#include "StoredCookie.h"

/// True if the name begins with "__Secure-" or "__Host-", in any letter case. Such a name promises
/// that only the site itself can have set the cookie.
bool HasPrefix(const std::string& cookieName);

/// True if the cookie has the attributes that its name's prefix promises, or if the name has no
/// prefix. The engine stores cookies that break the promise.
bool KeepsPrefixPromise(const StoredCookie& cookie);
