#include "ContentDisposition.h"

#include <glib.h>

bool IsInline(const std::string& contentDisposition) {
    constexpr const char* kSpace = " \t";
    const std::size_t start = contentDisposition.find_first_not_of(kSpace);
    if (start == std::string::npos) {
        return false;
    }
    const std::size_t end = contentDisposition.find_first_of(" \t;", start);
    return g_ascii_strcasecmp(contentDisposition.substr(start, end - start).c_str(), "inline") == 0;
}
