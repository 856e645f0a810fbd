#include "AddedHeader.h"

#include <libsoup/soup.h>

AddedHeader::AddedHeader(WebKitWebView* view, std::string url, std::string setCookie)
    : m_view(view), m_url(std::move(url)), m_setCookie(std::move(setCookie)) {
    g_signal_connect(m_view, "resource-load-started", G_CALLBACK(onResourceLoadStarted), this);
}

AddedHeader::~AddedHeader() {
    g_signal_handlers_disconnect_by_data(m_view, this);
}

void AddedHeader::onResourceLoadStarted(WebKitWebView* /*view*/, WebKitWebResource* resource,
                                        WebKitURIRequest* request, AddedHeader* self) {
    if (self->m_url == webkit_uri_request_get_uri(request)) {
        // Behind the window's own handler, which was connected a moment ago.
        g_signal_connect(resource, "notify::response", G_CALLBACK(onResponse), self);
    }
}

void AddedHeader::onResponse(WebKitWebResource* resource, GParamSpec* /*property*/,
                             AddedHeader* self) {
    if (self->m_delivered) {
        return;
    }
    self->m_delivered = true;
    SoupMessageHeaders* const headers =
        webkit_uri_response_get_http_headers(webkit_web_resource_get_response(resource));
    soup_message_headers_append(headers, "Set-Cookie", self->m_setCookie.c_str());
    g_object_notify(G_OBJECT(resource), "response");
}
