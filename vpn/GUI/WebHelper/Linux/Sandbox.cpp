#include "Sandbox.h"

#include <cassert>
#include <cstdlib>
#include <cstring>
#include <string>

#include "AppLog.h"
#include "MainThread.h"
#include "SandboxProbe.h"

namespace {

// The engine's own variable, by the engine's own rule. It needs no help to obey it.
bool IsTurnedOff() {
    const char* const value = std::getenv("WEBKIT_DISABLE_SANDBOX_THIS_IS_DANGEROUS");
    return value != nullptr && std::strcmp(value, "0") != 0;
}

CSandboxProbe& TheProbe() {
    static CSandboxProbe probe;
    return probe;
}

}  // namespace

void BeginSandboxProbe() {
    assert(IsMainThread());
    if (!IsTurnedOff()) {
        TheProbe();
    }
}

void ConfineWebProcesses(WebKitWebContext* context) {
    assert(IsMainThread());
    if (IsTurnedOff()) {
        return;
    }
    const std::string& obstacle = TheProbe().Obstacle();
    if (!obstacle.empty()) {
        TK_LOG_WARNING_OF("init", "Pages are not confined, the engine's sandbox does not work: %s",
                          obstacle.c_str());
        return;
    }
    webkit_web_context_set_sandbox_enabled(context, TRUE);
}
