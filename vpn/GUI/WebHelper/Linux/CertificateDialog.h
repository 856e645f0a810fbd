#pragma once

#include <gtk/gtk.h>

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "RequestDialog.h"
#include "TokenCertificate.h"

/// Asks the person which certificate to show to a site, if any. A single one must be confirmed as
/// well, because it tells the site who the person is. Main thread only.
class CCertificateDialog {
public:
    /// The number of the chosen certificate, or nothing.
    using Answered = std::function<void(std::optional<std::size_t>)>;

    /// Shows the dialog. The handler is called once, by the main loop, and may destroy this, which
    /// closes the dialog. The parent is not owned.
    CCertificateDialog(GtkWindow* parent, const std::string& site,
                       const std::vector<TokenCertificate>& certificates, Answered answered);
    ~CCertificateDialog();
    CCertificateDialog(const CCertificateDialog&) = delete;
    CCertificateDialog& operator=(const CCertificateDialog&) = delete;

private:
    static void onResponse(GtkDialog* dialog, int response, CCertificateDialog* self);
    static void onRowActivated(GtkListBox* list, GtkListBoxRow* row, CCertificateDialog* self);
    static gboolean onAccept(gpointer self);

    CRequestDialog m_dialog;
    GtkListBox* m_list;
    Answered m_answered;
    guint m_acceptSource = 0;
};
