#pragma once

#include <cstdint>
#include <string>

// The rules that turn the engine's reports about a load into an outcome.

/// What a failed load means for the operation.
enum class LoadFailure {
    cancelled,   ///< another load replaced it: not logged
    cannotShow,  ///< the address is not for a browser: logged, the operation stays open
    failed,      ///< the operation ends with an error
};

/// Classifies a failure by the error's numeric code alone, whatever its domain.
LoadFailure ClassifyLoadFailure(int errorCode);

/// True for the statuses 400 to 599.
bool IsHttpError(std::uint32_t status);

/// True if the current URI equals the final URL, which completes the operation. The comparison is
/// byte for byte, without normalisation. A null or empty URI, as after a failed load, never
/// matches, not even an empty final URL.
bool IsFinalUrl(const char* currentUri, const std::string& finalUrl);

/// True if a page that changes its address without a load comes to the final URL by that. To drop
/// the fragment alone is to stay at the same page.
bool IsArrival(const std::string& fromUri, const std::string& toUri, const std::string& finalUrl);

/// True for a response that may carry the operation's cookie: its status is 200 to 299 and its type
/// is exactly "text/html".
bool IsCookieBearingResponse(std::uint32_t status, const char* mimeType);
