#include "UriHost.h"

#include <cstring>

#include "SoupUri.h"

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
