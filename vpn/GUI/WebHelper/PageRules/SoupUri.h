#pragma once

#include <libsoup/soup.h>

#include <memory>

// The differences between libsoup 2.4, which has its own type for URIs, and libsoup 3, which uses
// GLib's. Cookies and message headers have the same names in both.

#if SOUP_CHECK_VERSION(3, 0, 0)

struct SoupUriFree {
    void operator()(GUri* uri) const { g_uri_unref(uri); }
};
using SoupUriPtr = std::unique_ptr<GUri, SoupUriFree>;

/// Null when the text is no URI.
inline SoupUriPtr ParseUri(const char* text) {
    // As lenient as the older library.
    const int flags = SOUP_HTTP_URI_FLAGS | G_URI_FLAGS_PARSE_RELAXED;
    return SoupUriPtr(g_uri_parse(text, static_cast<GUriFlags>(flags), nullptr));
}

/// In lower case. Owned by the URI.
inline const char* SchemeOf(GUri* uri) {
    return g_uri_get_scheme(uri);
}

/// Null when the URI has no host. Owned by the URI.
inline const char* HostOf(GUri* uri) {
    return g_uri_get_host(uri);
}

#else

struct SoupUriFree {
    void operator()(SoupURI* uri) const { soup_uri_free(uri); }
};
using SoupUriPtr = std::unique_ptr<SoupURI, SoupUriFree>;

/// Null when the text is no URI.
inline SoupUriPtr ParseUri(const char* text) {
    return SoupUriPtr(soup_uri_new(text));
}

/// In lower case. Owned by the URI.
inline const char* SchemeOf(SoupURI* uri) {
    return soup_uri_get_scheme(uri);
}

/// Null when the URI has no host. Owned by the URI.
inline const char* HostOf(SoupURI* uri) {
    return soup_uri_get_host(uri);
}

#endif
