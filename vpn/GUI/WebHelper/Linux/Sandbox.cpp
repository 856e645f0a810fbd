#include "Sandbox.h"

#include <unistd.h>

#include <cassert>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>
#include <system_error>

#include "AppLog.h"
#include "FolderEntries.h"
#include "MainThread.h"
#include "ProcessSetup.h"
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
        LetEngineReadDesktopSettings();
        return;
    }
    const std::string& obstacle = TheProbe().Obstacle();
    if (!obstacle.empty()) {
        TK_LOG_WARNING_OF("init", "Pages are not confined, the engine's sandbox does not work: %s",
                          obstacle.c_str());
        LetEngineReadDesktopSettings();
        return;
    }
    webkit_web_context_set_sandbox_enabled(context, TRUE);
}

void RemoveSandboxNotes() {
    assert(IsMainThread());
    namespace fs = std::filesystem;
    const fs::path folder = fs::path(g_get_user_runtime_dir()) / ".flatpak";
    const std::string start = "webkit-" + std::to_string(getpid()) + "-";
    std::error_code ignored;
    for (const fs::path& note : FolderEntries(folder)) {
        if (note.filename().string().rfind(start, 0) == 0) {
            fs::remove_all(note, ignored);
        }
    }
    // Other programs with this engine may have theirs there: a folder that is not empty stays.
    fs::remove(folder, ignored);
}
