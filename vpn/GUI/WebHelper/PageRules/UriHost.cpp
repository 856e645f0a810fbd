#include "UriHost.h"

#include <cstring>

#include "SoupUri.h"

namespace {

bool IsHttps(const char* text) {
    const SoupUriPtr uri = ParseUri(text);
    return uri != nullptr && std::strcmp(SchemeOf(uri.get()), "https") == 0;
}

}  // namespace

bool HaveEqualHosts(const char* firstUri, const char* secondUri) {
    const SoupUriPtr first = ParseUri(firstUri);
    const SoupUriPtr second = ParseUri(secondUri);
    if (first == nullptr || second == nullptr) {
        return false;
    }
    const char* const firstHost = HostOf(first.get());
    const char* const secondHost = HostOf(second.get());
    return firstHost != nullptr && secondHost != nullptr && std::strcmp(firstHost, secondHost) == 0;
}

bool IsAsSecureAs(const char* uri, const char* otherUri) {
    return IsHttps(uri) || !IsHttps(otherUri);
}

std::string SchemeAndHost(const char* uri) {
    const SoupUriPtr parsed = ParseUri(uri);
    if (parsed == nullptr) {
        return "";
    }
    const std::string scheme = std::string(SchemeOf(parsed.get())) + ":";
    const char* const host = HostOf(parsed.get());
    return host != nullptr && *host != '\0' ? scheme + "//" + host : scheme;
}
