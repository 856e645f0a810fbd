#pragma once

// The file and system utilities of the suite's components. They validate their arguments, log their
// own failures and throw nothing. They hold no state, so any thread may call them. They do not
// synchronise two callers that edit the same file at the same time.

#include "FileStatus.h"
#include "SignalUtils.h"
#include "TextFile.h"
#include "TimeUtils.h"
