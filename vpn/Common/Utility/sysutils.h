#pragma once

// The file and system utilities of the suite's components. They validate their arguments, log
// their own failures and throw nothing. They hold no state: any thread, but two callers that edit
// one file at a time are not kept apart.

#include "FileStatus.h"
#include "SignalUtils.h"
#include "TextFile.h"
#include "TimeUtils.h"
