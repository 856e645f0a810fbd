#include "ResponseHeader.h"

#include <libsoup/soup.h>

std::optional<std::string> ResponseHeader(WebKitURIResponse* response, const char* name) {
    SoupMessageHeaders* const headers = webkit_uri_response_get_http_headers(response);
    const char* const text =
        headers != nullptr ? soup_message_headers_get_one(headers, name) : nullptr;
    return text != nullptr ? std::make_optional<std::string>(text) : std::nullopt;
}
