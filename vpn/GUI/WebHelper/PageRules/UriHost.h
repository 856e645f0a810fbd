#pragma once

#include <string>

/// True if both texts are URIs with a host, and the hosts are equal, letter case included.
bool HaveEqualHosts(const char* firstUri, const char* secondUri);

/// False if the other text is an https URI and the first is none. An answer without TLS must not
/// decide for a page that has it.
bool IsAsSecureAs(const char* uri, const char* otherUri);

/// What may be shown of an address: "https://login.example", or "data:" for one without a host.
/// Empty if the text is no URI.
std::string SchemeAndHost(const char* uri);
