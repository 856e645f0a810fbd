#include "WebKitSymbolResolver.h"

#include <dlfcn.h>

#include "AppLog.h"

namespace {

template <class Function>
void Find(void* handle, const char* name, Function& function) {
    function = reinterpret_cast<Function>(dlsym(handle, name));
}

template <class Function>
bool Resolve(void* handle, const char* name, Function& function) {
    Find(handle, name, function);
    if (function == nullptr) {
        TK_LOG_WARNING_OF("ResolveSymbols", "Symbol %s not found.", name);
    }
    return function != nullptr;
}

}  // namespace

const CWebKitSymbolResolver& CWebKitSymbolResolver::GetInstance() {
    static const CWebKitSymbolResolver resolver;
    return resolver;
}

CWebKitSymbolResolver::CWebKitSymbolResolver() {
    ResolveSymbols();
}

void CWebKitSymbolResolver::ResolveSymbols() {
    // The handle is never closed: it is the program itself.
    void* const handle = dlopen(nullptr, RTLD_LAZY);
    if (handle == nullptr) {
        // dlsym() takes a null handle as the default search scope.
        TK_LOG_ERROR("dlopen failed: %s", dlerror());
    }
    ready = Resolve(handle, "webkit_cookie_manager_get_cookies", getCookies) &&
            Resolve(handle, "webkit_cookie_manager_get_cookies_finish", getCookiesFinish);
    Find(handle, "webkit_cookie_manager_get_all_cookies", getAllCookies);
    Find(handle, "webkit_cookie_manager_get_all_cookies_finish", getAllCookiesFinish);
}
