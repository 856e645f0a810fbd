#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "StoredCookie.h"

/// A query to the cookie store. The answer comes with a copy of the query.
struct CookieQuery {
    enum class Purpose {
        baseline,        ///< every cookie, before the operation's load begins
        request,         ///< every cookie, before a page is requested
        page,            ///< the cookies of a page whose response has come
        finalPage,       ///< the cookies of the final page, which has finished
        finalPageAgain,  ///< the same, because the store or the page's address has changed
    };
    Purpose purpose;
    std::string uri;
    /// The number of the operation that asks. An answer that comes after that operation's result is
    /// dropped.
    std::uint64_t operation;
    /// For a page: what the store held before the page was requested.
    std::vector<StoredCookie> baseline = {};
};
