// The addresses of an operation and of a page, whose hosts are compared and shown.
//
// Input: one address, a line feed, and the other address.

#include <glib.h>

#include <set>
#include <string>

#include "Check.h"
#include "FuzzInput.h"
#include "FuzzTarget.h"
#include "UriHost.h"

namespace {

constexpr std::size_t kSchemesTried = 1000;

/// GLib keeps every scheme that it meets until the process ends, and leaks a table once there are
/// some thousands. So only this many are tried in one process.
bool MayTryScheme(const std::string& address) {
    static std::set<std::string> schemes;
    const std::string scheme = address.substr(0, address.find(':'));
    if (schemes.size() < kSchemesTried) {
        schemes.insert(scheme);
    }
    return scheme == address || schemes.count(scheme) != 0;
}

/// The host of what may be shown of an address.
std::string ShownHost(const std::string& address) {
    const std::string shown = SchemeAndHost(address.c_str());
    const std::size_t host = shown.find("//");
    return host != std::string::npos ? shown.substr(host) : "";
}

}  // namespace

int LLVMFuzzerInitialize(int* /*argc*/, char*** /*argv*/) {
    g_log_set_always_fatal(static_cast<GLogLevelFlags>(G_LOG_LEVEL_WARNING | G_LOG_LEVEL_CRITICAL |
                                                       G_LOG_LEVEL_ERROR));
    return 0;
}

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzInput input(data, size);
    const std::string first = input.TakeLine();
    const std::string second = input.TakeRest();
    if (!MayTryScheme(first) || !MayTryScheme(second)) {
        return 0;
    }
    const auto haveEqualHosts = [](const std::string& left, const std::string& right) {
        return HaveEqualHosts(left.c_str(), right.c_str());
    };

    const bool firstHasHost = haveEqualHosts(first, first);
    const bool secondHasHost = haveEqualHosts(second, second);
    const bool areEqual = haveEqualHosts(first, second);
    TK_CHECK(areEqual == haveEqualHosts(second, first));
    TK_CHECK(!areEqual || (firstHasHost && secondHasHost));
    TK_CHECK(!firstHasHost || !haveEqualHosts(first, "about:blank"));
    // If two hosts are equal and one equals a known host, the other equals it, too.
    for (const char* const known : {"http://login.example/", "https://www.example/"}) {
        TK_CHECK(!(areEqual && haveEqualHosts(first, known)) || haveEqualHosts(second, known));
    }
    TK_CHECK(!areEqual || ShownHost(first) == ShownHost(second));
    TK_CHECK(!haveEqualHosts(first, "http://login.example/") ||
             !haveEqualHosts(first, "http://www.example/"));
    return 0;
}
