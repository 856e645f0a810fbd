#pragma once

#include <webkit2/webkit2.h>

#include <string>

/// Adds a "Set-Cookie" header to the response for one address, as the application sees it. The
/// engine takes these headers out of every response, whatever its settings, so that the handlers
/// for them can be reached in no other way: behind the engine's own announcement of the response,
/// the header is put in and the response announced once more.
class AddedHeader {
public:
    /// Watches the view, which must outlive this object.
    AddedHeader(WebKitWebView* view, std::string url, std::string setCookie);
    ~AddedHeader();
    AddedHeader(const AddedHeader&) = delete;
    AddedHeader& operator=(const AddedHeader&) = delete;

    /// Whether the response has come.
    [[nodiscard]] bool IsDelivered() const { return m_delivered; }

private:
    static void onResourceLoadStarted(WebKitWebView* view, WebKitWebResource* resource,
                                      WebKitURIRequest* request, AddedHeader* self);
    static void onResponse(WebKitWebResource* resource, GParamSpec* property, AddedHeader* self);

    WebKitWebView* m_view;
    std::string m_url;
    std::string m_setCookie;
    bool m_delivered = false;
};
