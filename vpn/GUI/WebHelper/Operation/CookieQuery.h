#pragma once

#include <cstdint>
#include <string>

/// A question to the cookie store. Its answer comes with a copy of it.
struct CookieQuery {
    enum class Purpose {
        baseline,   ///< every cookie there is before the operation's load begins
        page,       ///< the cookies of a page whose answer has come
        finalPage,  ///< the cookies of the final page, which has finished
    };
    Purpose purpose;
    std::string uri;
    /// The operation that asks: an answer that comes behind its result is nobody's.
    std::uint64_t operation;
};
