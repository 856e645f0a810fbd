#include "PageOutcome.h"

#include <cstring>

namespace {

// WEBKIT_NETWORK_ERROR_CANCELLED and WEBKIT_POLICY_ERROR_CANNOT_SHOW_URI.
constexpr int kCancelled = 302;
constexpr int kCannotShowUri = 101;

}  // namespace

LoadFailure ClassifyLoadFailure(int errorCode) {
    switch (errorCode) {
        case kCancelled:
            return LoadFailure::cancelled;
        case kCannotShowUri:
            return LoadFailure::cannotShow;
        default:
            return LoadFailure::failed;
    }
}

bool IsHttpError(std::uint32_t status) {
    return status >= 400 && status <= 599;
}

bool IsFinalUrl(const char* currentUri, const std::string& finalUrl) {
    return currentUri != nullptr && *currentUri != '\0' && finalUrl == currentUri;
}

bool IsArrival(const std::string& fromUri, const std::string& toUri, const std::string& finalUrl) {
    const bool dropsFragment = fromUri.compare(0, toUri.size() + 1, toUri + "#") == 0;
    return IsFinalUrl(toUri.c_str(), finalUrl) && !dropsFragment;
}

bool IsCookieBearingResponse(std::uint32_t status, const char* mimeType) {
    return status >= 200 && status <= 299 && mimeType != nullptr &&
           std::strcmp(mimeType, "text/html") == 0;
}
