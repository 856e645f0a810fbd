#include "TokenListing.h"

#include <cassert>
#include <ctime>
#include <memory>
#include <utility>

#include "MainThread.h"
#include "TokenCertificates.h"

namespace {

using Certificates = std::vector<TokenCertificate>;

void DeleteCertificates(gpointer certificates) {
    delete static_cast<Certificates*>(certificates);
}

}  // namespace

CTokenListing::CTokenListing(Finished finished)
    : m_finished(std::move(finished)), m_cancellable(g_cancellable_new()) {
    assert(IsMainThread());
    const GObjectPtr<GTask> task(g_task_new(nullptr, m_cancellable.get(), onRead, this));
    // Whoever waits for the thread is freed when this is destroyed; the thread itself goes on.
    g_task_set_return_on_cancel(task.get(), TRUE);
    g_task_run_in_thread(task.get(), read);
}

CTokenListing::~CTokenListing() {
    assert(IsMainThread());
    g_cancellable_cancel(m_cancellable.get());
}

void CTokenListing::read(GTask* task, gpointer /*source*/, gpointer /*data*/,
                         GCancellable* /*cancellable*/) {
    auto certificates = std::make_unique<Certificates>(ReadTokenCertificates(std::time(nullptr)));
    g_task_return_pointer(task, certificates.release(), DeleteCertificates);
}

void CTokenListing::onRead(GObject* /*source*/, GAsyncResult* result, gpointer self) {
    GTask* const task = G_TASK(result);
    if (g_cancellable_is_cancelled(g_task_get_cancellable(task)) != FALSE) {
        return;  // this is gone
    }
    const std::unique_ptr<Certificates> certificates(
        static_cast<Certificates*>(g_task_propagate_pointer(task, nullptr)));
    // The handler may destroy this.
    const Finished finished = static_cast<CTokenListing*>(self)->m_finished;
    finished(*certificates);
}
