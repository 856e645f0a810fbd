// Stands where the window stands: each operation, carried out on the main thread, has its own URL
// for a result. Nothing of the toolkit and the engine is linked.

#include "StandInWindow.h"

#include <cstdlib>
#include <utility>

#include "GtkBrowserWindow.h"
#include "StandInLoop.h"

namespace {

std::function<void()> whileMade = [] {};

}  // namespace

void WhileWindowIsMade(std::function<void()> event) {
    whileMade = std::move(event);
}

struct GtkBrowserWindow::MainThreadParts {};

GtkBrowserWindow::GtkBrowserWindow(GtkApplication* /*application*/, ResultHandler resultHandler)
    : m_resultHandler(std::move(resultHandler)) {
    whileMade();
}

GtkBrowserWindow::~GtkBrowserWindow() = default;

void GtkBrowserWindow::HandleOperation(const CBrowserOperation& operation) {
    StandInLoop::Current().Post([this, url = std::string(operation.GetUrl())] {
        CBrowserResult result(BrowserResultType::success_with_cookie, url);
        m_resultHandler(result);
    });
}

// The controller calls none of these.
void GtkBrowserWindow::LoadPage(const std::string& /*url*/, const std::string& /*finalUrl*/,
                                const std::string& /*cookieName*/,
                                const std::string& /*errorCookieName*/,
                                const std::string& /*userAgent*/, std::uint32_t /*timeout*/) {
    std::abort();
}
void GtkBrowserWindow::Show() {
    std::abort();
}
void GtkBrowserWindow::Hide() {
    std::abort();
}
void GtkBrowserWindow::ResetBrowser() {
    std::abort();
}

// Any object may be the application.
GType gtk_application_get_type() {
    return G_TYPE_OBJECT;
}
