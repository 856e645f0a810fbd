#pragma once

#include <atomic>
#include <cstdint>
#include <memory>

#include "GObjectPtr.h"
#include "GtkBrowserWindow.h"
#include "IBrowserIpcClient.h"
#include "IBrowserIpcClientCB.h"

/// Connects the agent's side with the browser window: it passes operations in and results out, and
/// ends the application when the connection fails or the agent asks for it.
///
/// Created, used and destroyed on the main thread. The callbacks run on the I/O thread.
class GtkBrowserController final : public IBrowserIpcClientCB {
public:
    /// Starts the connection to the agent's port, creates the window and sends `ready`. Sets ok to
    /// false if no connection could be set up; the application is then asked to quit.
    GtkBrowserController(GtkApplication* application, std::uint16_t port, bool& ok);
    ~GtkBrowserController() override;
    GtkBrowserController(const GtkBrowserController&) = delete;
    GtkBrowserController& operator=(const GtkBrowserController&) = delete;

    void OnReceivedBrowserOperation(const IBrowserOperation& operation) override;
    void OnReceivedInvalidBrowserOperation() override;
    void OnBrowserResultSent() override;
    void OnBrowserResultSendError() override;
    void OnIpcConnectError() override;
    void OnIpcReceiveError() override;

    /// Sends one result to the agent. A failure is logged and has no other effect. Main thread.
    virtual void HandleResult(CBrowserResult& result);

private:
    [[nodiscard]] bool registerBrowserIpcClient(std::uint16_t port);

    // Holds a reference, because the I/O thread may quit the application until the IPC client is
    // released. That is after the main loop has released the application.
    GObjectPtr<GtkApplication> m_application;
    IBrowserIpcClient* m_ipcClient = nullptr;
    std::unique_ptr<GtkBrowserWindow> m_browserWindow;
    // The window for the I/O thread. Null until the window is complete.
    std::atomic<GtkBrowserWindow*> m_readyWindow{nullptr};
};
