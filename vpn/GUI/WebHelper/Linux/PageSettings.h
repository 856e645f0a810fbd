#pragma once

#include <webkit2/webkit2.h>

/// Switches off what no sign-in page needs and what a hostile page could use. Main thread only.
void RestrictPages(WebKitSettings* settings);
