#include "GtkBrowserController.h"

#include <cassert>

#include "AppLog.h"
#include "ApplicationEnd.h"
#include "BrowserIPCClient.h"
#include "MainThread.h"

GtkBrowserController::GtkBrowserController(GtkApplication* application, std::uint16_t port,
                                           bool& ok)
    : m_application(GTK_APPLICATION(g_object_ref(application))) {
    assert(IsMainThread());
    ok = registerBrowserIpcClient(port);
    if (!ok) {
        return;
    }
    m_browserWindow = std::make_unique<GtkBrowserWindow>(
        application, [this](CBrowserResult& result) { HandleResult(result); });
    m_readyWindow = m_browserWindow.get();
    CBrowserResult ready(BrowserResultType::ready, "");
    HandleResult(ready);
}

GtkBrowserController::~GtkBrowserController() {
    assert(IsMainThread());
    // The client is released first: after that no callback can reach the window.
    if (m_ipcClient != nullptr) {
        UnregisterBrowserIpcClient(m_ipcClient);
        m_ipcClient = nullptr;
    }
    m_readyWindow = nullptr;
    m_browserWindow.reset();
}

bool GtkBrowserController::registerBrowserIpcClient(std::uint16_t port) {
    if (m_ipcClient != nullptr) {
        return true;
    }
    if (RegisterBrowserIpcClient(port, this, &m_ipcClient)) {
        return true;
    }
    TK_LOG_ERROR("Failed to register Browser IPC client.");
    QuitApplication(m_application.get());
    return false;
}

void GtkBrowserController::OnReceivedBrowserOperation(const IBrowserOperation& operation) {
    const CBrowserOperation copy(
        operation.GetOperationType(), operation.GetShow(), operation.GetTimeout(),
        operation.GetUrl(), operation.GetFinalUrl(), operation.GetCookieName(),
        operation.GetErrorCookieName(), operation.GetUserAgent(), operation.GetTitle());
    if (copy.GetOperationType() == BrowserOperationType::terminate) {
        QuitApplication(m_application.get());
        return;
    }
    GtkBrowserWindow* const window = m_readyWindow;
    if (window == nullptr) {
        TK_LOG_ERROR("Couldn't process browser operation at this time. Browser is not ready yet.");
        return;
    }
    window->HandleOperation(copy);
}

void GtkBrowserController::OnReceivedInvalidBrowserOperation() {
    TK_LOG_WARNING("Notified of receiving invalid browser operation");
}

void GtkBrowserController::OnBrowserResultSent() {}

void GtkBrowserController::OnBrowserResultSendError() {
    TK_LOG_WARNING("Notified of browser result send error");
}

void GtkBrowserController::OnIpcConnectError() {
    TK_LOG_ERROR("Error connecting to IPC server, exiting...");
    QuitApplication(m_application.get());
}

void GtkBrowserController::OnIpcReceiveError() {
    TK_LOG_ERROR("Error receving data from IPC server, exiting...");
    QuitApplication(m_application.get());
}

void GtkBrowserController::HandleResult(CBrowserResult& result) {
    assert(IsMainThread());
    const ResultCode code = m_ipcClient->SendBrowserResult(result);
    if (code != kSuccess) {
        TK_LOG_FAILED_CALL("IBrowserIpcClient::SendBrowserResult", code);
    }
}
