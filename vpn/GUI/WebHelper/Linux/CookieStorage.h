#pragma once

#include <webkit2/webkit2.h>

/// Makes the engine keep its cookies in a file in the user's home, for this user alone, and refuse
/// third-party cookies. If the folder cannot be created, if others may write to it, or if the file
/// is a link or another user's, that is logged, and cookies last only as long as the process. Main
/// thread.
void KeepCookiesInHome(WebKitCookieManager* manager);
