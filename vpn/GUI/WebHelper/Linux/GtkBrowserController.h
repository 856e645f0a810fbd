#pragma once

#include <atomic>
#include <cstdint>
#include <memory>

#include "GObjectPtr.h"
#include "GtkBrowserWindow.h"
#include "IBrowserIpcClient.h"
#include "IBrowserIpcClientCB.h"

/// Joins the agent's connection to the browser window: operations in, results out, and the
/// application's end when the connection fails or the agent asks for it.
///
/// Made, used and destroyed on the main thread; the callbacks run on the I/O thread.
class GtkBrowserController final : public IBrowserIpcClientCB {
public:
    /// Connects to the agent's port, makes the window and tells the agent that it is ready.
    /// ok is false when no connection could be set up; the application is then asked to quit.
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

    /// Sends one result to the agent; a failure is logged and nothing more. Main thread.
    virtual void HandleResult(CBrowserResult& result);

private:
    [[nodiscard]] bool registerBrowserIpcClient(std::uint16_t port);

    // Held, not only pointed to: the I/O thread may ask for the application's end until the IPC
    // client is given back, which is after the main loop has let the application go.
    GObjectPtr<GtkApplication> m_application;
    IBrowserIpcClient* m_ipcClient = nullptr;
    std::unique_ptr<GtkBrowserWindow> m_browserWindow;
    // What the I/O thread sees of the window: null until it stands.
    std::atomic<GtkBrowserWindow*> m_readyWindow{nullptr};
};
