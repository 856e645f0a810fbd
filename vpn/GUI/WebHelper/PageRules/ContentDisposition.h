#pragma once

#include <string>

/// Whether an answer with this Content-Disposition is a page to show. Anything but "inline",
/// whatever its parameters, is a file to save.
[[nodiscard]] bool IsInline(const std::string& contentDisposition);
