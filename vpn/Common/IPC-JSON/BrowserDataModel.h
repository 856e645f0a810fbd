#pragma once

// The two records that the agent and the helper exchange, with their interfaces and types.

#include "BrowserOperation.h"   // IWYU pragma: export
#include "BrowserResult.h"      // IWYU pragma: export
#include "BrowserTypes.h"       // IWYU pragma: export
#include "IBrowserOperation.h"  // IWYU pragma: export
#include "IBrowserResult.h"     // IWYU pragma: export
#include "IJSONIpcMessage.h"    // IWYU pragma: export
