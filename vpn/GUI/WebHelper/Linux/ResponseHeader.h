#pragma once

#include <webkit2/webkit2.h>

#include <optional>
#include <string>

/// The text of a response's header as the engine hands it over, not parsed. If the header came more
/// than once, the last text or all of them joined. Main thread only.
[[nodiscard]] std::optional<std::string> ResponseHeader(WebKitURIResponse* response,
                                                        const char* name);
