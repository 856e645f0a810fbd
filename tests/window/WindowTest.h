#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <gtk/gtk.h>
#include <webkit2/webkit2.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "GObjectPtr.h"
#include "GtkBrowserWindow.h"
#include "HttpServer.h"
#include "InstanceSmartPtr.h"
#include "LoadEvents.h"
#include "LogCapture.h"
#include "MainLoop.h"
#include "Operation.h"
#include "StoragePath.h"
#include "XClient.h"

/// The fixture of every suite here: an application with one browser window on a display of its
/// own, a web server for it to visit, and a record of its results and its log. The record, whole,
/// is what a test compares.
class WindowTest : public testing::Test {
protected:
    WindowTest();
    ~WindowTest() override;

    /// Makes the window, which a test does itself when it has something to prepare.
    void Open();
    /// Ends the window as the end of the program does.
    void Shut();

    GtkBrowserWindow& Browser() { return *m_browser; }
    [[nodiscard]] GtkWindow* Window() const;
    [[nodiscard]] WebKitWebView* View() const;
    /// The window as the X server knows it; it has been shown at least once.
    [[nodiscard]] XWindow OnScreen() const;
    [[nodiscard]] bool IsShown() const;
    /// The toolkit tells the X server with the window's next frame. False when the test deadline
    /// passed.
    [[nodiscard]] bool WaitUntilShown() const;
    [[nodiscard]] bool WaitUntilHidden() const;

    void Send(const Operation& operation) { Browser().HandleOperation(operation.Build()); }

    /// The window's results in order, as "success" or "success_with_cookie value".
    [[nodiscard]] const std::vector<std::string>& Results() const { return m_results; }
    /// Runs the main loop until there are so many; false when the test deadline passed.
    [[nodiscard]] bool WaitForResults(std::size_t count) const;
    /// The same for requests that the server has received.
    [[nodiscard]] bool WaitForRequest(const std::string& path, std::size_t count = 1) const;
    /// What the agent does with each result, on the main thread, after it has been recorded.
    void OnResult(std::function<void()> reaction) { m_reaction = std::move(reaction); }

    /// Every log record so far, as "E message".
    [[nodiscard]] std::vector<std::string> LogLines() const { return m_log.Lines(); }

    /// Shows a page and keeps the operation open: the page is not its final one.
    void ShowPage(const std::string& path);
    /// Gives the window the keyboard.
    void FocusWindow();
    /// Closes the window as its user does.
    void CloseWindow();
    /// The same without the way through the X server: the window need not have been shown.
    void AskToClose();

    /// Runs the main loop for longer than a timeout of one second can take.
    void OutlastOneSecondTimeout();

    HttpServer m_server;
    LogCapture m_log;
    LoadEvents m_loads;
    XClient m_screen;

private:
    CInstanceSmartPtr<StoragePath> m_storagePath;
    GObjectPtr<GtkApplication> m_application;
    std::unique_ptr<GtkBrowserWindow> m_browser;
    std::vector<std::string> m_results;
    std::function<void()> m_reaction = [] {};
};

/// The same with the window already open, and its log from then on.
class OpenWindowTest : public WindowTest {
protected:
    OpenWindowTest() {
        Open();
        m_log.Clear();
    }
};
