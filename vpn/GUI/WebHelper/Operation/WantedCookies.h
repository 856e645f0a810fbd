#pragma once

#include <optional>
#include <string>
#include <vector>

#include "BrowserTypes.h"
#include "StoredCookie.h"

/// A cookie that decides an operation. Its value is a secret: it is never logged.
struct DecidingCookie {
    BrowserResultType result;  ///< success_with_cookie or error_cookie
    std::string value;
};

/// The names of the two cookies that decide an operation: one means success, the other means that
/// the server refused. A cookie without a name or a value decides nothing, nor does one that lacks
/// what its name's prefix promises. Immutable.
class CWantedCookies {
public:
    /// No cookie is wanted.
    CWantedCookies() = default;
    CWantedCookies(std::string name, std::string errorName);

    /// Whether the operation wants a cookie.
    [[nodiscard]] bool AreWanted() const { return !m_name.empty(); }

    /// Searches the text of a "Set-Cookie" header, for the error cookie last. Finds no cookie whose
    /// name has a prefix.
    [[nodiscard]] std::optional<DecidingCookie> FindInHeader(const std::string& header) const;

    /// Returns the first cookie of the list that is one of the two.
    [[nodiscard]] std::optional<DecidingCookie> FindFirst(
        const std::vector<StoredCookie>& cookies) const;

    /// Returns the first cookie of the list that means success, or else the first error cookie.
    [[nodiscard]] std::optional<DecidingCookie> FindPreferred(
        const std::vector<StoredCookie>& cookies) const;

private:
    [[nodiscard]] std::optional<DecidingCookie> Judge(const StoredCookie& cookie) const;

    std::string m_name;
    std::string m_errorName;
};
