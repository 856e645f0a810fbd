#pragma once

#include <webkit2/webkit2.h>

/// The engine's functions that read cookies. They are looked up in the loaded libraries at run
/// time, so that the program starts and browses even with an engine that lacks them. Main thread
/// only.
class CWebKitSymbolResolver {
public:
    using GetCookies = decltype(&webkit_cookie_manager_get_cookies);
    using GetCookiesFinish = decltype(&webkit_cookie_manager_get_cookies_finish);
    using GetAllCookies = decltype(&webkit_cookie_manager_get_all_cookies);

    /// Returns the process's one resolver, which is created on first use.
    static const CWebKitSymbolResolver& GetInstance();

    GetCookies getCookies = nullptr;
    GetCookiesFinish getCookiesFinish = nullptr;
    bool ready = false;  ///< whether both functions were found

    /// Only newer engines have these. Each is null if missing, which is not logged.
    GetAllCookies getAllCookies = nullptr;
    GetCookiesFinish getAllCookiesFinish = nullptr;

private:
    CWebKitSymbolResolver();
    void ResolveSymbols();
};
