#pragma once

#include <cstdint>
#include <string>

/// A query to the cookie store. The answer comes with a copy of the query.
struct CookieQuery {
    enum class Purpose {
        baseline,   ///< every cookie, before the operation's load begins
        page,       ///< the cookies of a page whose response has come
        finalPage,  ///< the cookies of the final page, which has finished
    };
    Purpose purpose;
    std::string uri;
    /// The number of the operation that asks. An answer that comes after that operation's result is
    /// dropped.
    std::uint64_t operation;
};
