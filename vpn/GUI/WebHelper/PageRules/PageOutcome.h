#pragma once

#include <cstdint>
#include <string>

// The rules that turn what the engine tells of a load into an outcome.

/// What a failed load means for the operation.
enum class LoadFailure {
    cancelled,   ///< another load took its place: nothing is said of it
    cannotShow,  ///< the address is not for a browser: logged, the operation stays open
    failed,      ///< the operation ends with an error
};

/// Tells failures apart by the error's numeric code alone, whatever its domain.
LoadFailure ClassifyLoadFailure(int errorCode);

/// True for the failure with which a load ends whose network process has died.
bool IsNetworkProcessLoss(int errorCode);

/// True for the statuses 400 to 599.
bool IsHttpError(std::uint32_t status);

/// True when the page at the current URI is the one that completes the operation: equal byte for
/// byte, without normalisation. Having no URI (null or empty, as a failed load leaves it) is
/// being nowhere, also for an empty final URL.
bool IsFinalUrl(const char* currentUri, const std::string& finalUrl);

/// True for a response that may carry the operation's cookie: status 200 to 299 and exactly
/// "text/html" as its type.
bool IsCookieBearingResponse(std::uint32_t status, const char* mimeType);
