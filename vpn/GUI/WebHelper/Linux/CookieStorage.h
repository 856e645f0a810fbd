#pragma once

#include <webkit2/webkit2.h>

/// Has the engine keep its cookies in a file in the user's home, for the user alone, and refuse
/// those of third parties. Where the folder cannot be made, which is logged, they last as long as
/// the process. Main thread.
void KeepCookiesInHome(WebKitCookieManager* manager);
