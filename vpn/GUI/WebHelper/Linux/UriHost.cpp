#include "UriHost.h"

#include <libsoup/soup.h>

#include <cstring>
#include <memory>

namespace {

struct SoupUriFree {
    void operator()(SoupURI* uri) const { soup_uri_free(uri); }
};
using SoupUriPtr = std::unique_ptr<SoupURI, SoupUriFree>;

const char* HostOf(const SoupUriPtr& uri) {
    return uri != nullptr ? soup_uri_get_host(uri.get()) : nullptr;
}

}  // namespace

bool HaveEqualHosts(const char* firstUri, const char* secondUri) {
    const SoupUriPtr first(soup_uri_new(firstUri));
    const SoupUriPtr second(soup_uri_new(secondUri));
    const char* const firstHost = HostOf(first);
    const char* const secondHost = HostOf(second);
    return firstHost != nullptr && secondHost != nullptr && std::strcmp(firstHost, secondHost) == 0;
}
