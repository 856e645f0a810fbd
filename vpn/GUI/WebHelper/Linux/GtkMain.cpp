#include <gtk/gtk.h>
#include <libintl.h>

#include <clocale>
#include <cstdlib>
#include <memory>
#include <string>

#include "AppLog.h"
#include "BuiltInMessages.h"
#include "GObjectPtr.h"
#include "GtkBrowserController.h"
#include "InstallRoot.h"
#include "InstanceSmartPtr.h"
#include "ProcessSetup.h"
#include "Sandbox.h"
#include "SessionFolder.h"
#include "StoragePath.h"

namespace {

constexpr char kTextDomain[] = "tkdownloader-gtk";
constexpr std::uint32_t kLowestPort = 1024;
constexpr std::uint32_t kPortSpan = 65535 - kLowestPort;

// A global object: the log exists before anything else runs and ends after everything else.
ResultCode logResult = kSuccess;
CAppLog applicationLog(logResult, "tkwebhelper", nullptr);

// The low 32 bits of the number at the start of the text. What follows the number is ignored.
std::uint32_t ParsePort(const char* text) {
    return static_cast<std::uint32_t>(std::strtol(text, nullptr, 10));
}

bool IsValidPort(std::uint32_t port) {
    return port - kLowestPort <= kPortSpan;
}

bool CreateController(GApplication* application, std::uint16_t port) {
    // One controller for the whole process, deleted at its end. On purpose a second command line is
    // refused: it finds a controller, and ok stays false.
    bool ok = false;
    // Created before the controller, and so removed after it: its pages write into this folder.
    (void)CSessionFolder::Instance();
    static const std::unique_ptr<GtkBrowserController> controller =
        std::make_unique<GtkBrowserController>(GTK_APPLICATION(application), port, ok);
    return ok;
}

gint32 appParseCmdCB(GApplication* application, GApplicationCommandLine* commandLine) {
    int argumentCount = 0;
    const GStringArrayPtr arguments(
        g_application_command_line_get_arguments(commandLine, &argumentCount));
    if (argumentCount != 2) {
        TK_LOG_ERROR("Invalid launch arguments.");
        return 1;
    }
    const std::uint32_t port = ParsePort(arguments.get()[1]);
    if (!IsValidPort(port)) {
        TK_LOG_ERROR("Invalid server port parameter (%u)", port);
        return 1;
    }
    if (!CreateController(application, static_cast<std::uint16_t>(port))) {
        TK_LOG_ERROR("GtkBrowserWindow() failed.");
        return 1;
    }
    return 0;
}

CInstanceSmartPtr<StoragePath> CreateStoragePath() {
    CStoragePath* storagePath = nullptr;
    const ResultCode code = CStoragePath::CreateSingletonInstance(storagePath, "");
    if (code != kSuccess) {
        TK_LOG_FAILED_CALL_OF("main", "CStoragePath::CreateSingletonInstance", code);
    }
    return CInstanceSmartPtr<StoragePath>(storagePath);
}

void SetUpTranslation() {
    bindtextdomain(kTextDomain, (std::string(kInstallRoot) + "/l10n").c_str());
    bind_textdomain_codeset(kTextDomain, "UTF-8");
    textdomain(kTextDomain);
    (void)std::setlocale(LC_ALL, "");
}

// The program does not need the session bus. With the bus, GTK would look for the desktop's portal
// at start, and would wait half a minute for a portal that hangs. A registration that is already
// cancelled gets no bus. If it fails because of that, g_application_run() registers again.
void RegisterWithoutBus(GApplication* application) {
    const GObjectPtr<GCancellable> cancelled(g_cancellable_new());
    g_cancellable_cancel(cancelled.get());
    (void)g_application_register(application, cancelled.get(), nullptr);
}

int RunApplication(int argc, char** argv) {
    g_set_application_name("tkwebhelper");
    g_set_prgname(kProductFullName.c_str());
    // Without an identifier the application is never unique, so it handles its own command line.
    const GObjectPtr<GtkApplication> application(
        gtk_application_new(nullptr, G_APPLICATION_HANDLES_COMMAND_LINE));
    QuitOnSignals(application.get());
    g_signal_connect(application.get(), "command-line", G_CALLBACK(appParseCmdCB), nullptr);
    RegisterWithoutBus(G_APPLICATION(application.get()));
    return g_application_run(G_APPLICATION(application.get()), argc, argv);
}

}  // namespace

int main(int argc, char** argv) {
    KeepOthersOut();
    KeepSecretsPrivate();
    SecureEnvironment();
    DoWithoutGraphicsDriver();
    DoWithoutPortal();
    BeginSandboxProbe();
    LogWhatEndsTheProgram();
    const CInstanceSmartPtr<StoragePath> storagePath = CreateStoragePath();
    SetUpTranslation();
    const int status = RunApplication(argc, argv);
    RemoveSandboxNotes();
    return status;
}
