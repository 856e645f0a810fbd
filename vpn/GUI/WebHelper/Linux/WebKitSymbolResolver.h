#pragma once

#include <webkit2/webkit2.h>

/// The engine's functions that read cookies back, looked up in the libraries already loaded, so
/// that the program starts and browses even with an engine that lacks them. Main thread only.
class CWebKitSymbolResolver {
public:
    using GetCookies = decltype(&webkit_cookie_manager_get_cookies);
    using GetCookiesFinish = decltype(&webkit_cookie_manager_get_cookies_finish);
    using GetAllCookies = decltype(&webkit_cookie_manager_get_all_cookies);

    /// The resolver of the process, made on first use and never again.
    static const CWebKitSymbolResolver& GetInstance();

    GetCookies getCookies = nullptr;
    GetCookiesFinish getCookiesFinish = nullptr;
    bool ready = false;  ///< true only when both functions were found

    /// Of newer engines only; each null where it is missing, which is worth no word in the log.
    GetAllCookies getAllCookies = nullptr;
    GetCookiesFinish getAllCookiesFinish = nullptr;

private:
    CWebKitSymbolResolver();
    void ResolveSymbols();
};
