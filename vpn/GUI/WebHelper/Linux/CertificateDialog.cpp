#include "CertificateDialog.h"

#include <cassert>
#include <memory>
#include <utility>

#include "BuiltInMessages.h"
#include "MainLoopSource.h"
#include "MainThread.h"
#include "MsgCatalog.h"

namespace {

constexpr int kListWidth = 480;
constexpr int kListHeight = 220;
constexpr int kRowMargin = 6;

// With the whole year, which many locales leave out: certificates can hold for decades.
std::string DateOf(std::time_t time) {
    const std::unique_ptr<GDateTime, decltype(&g_date_time_unref)> date(
        g_date_time_new_from_unix_local(time), g_date_time_unref);
    const std::unique_ptr<gchar, decltype(&g_free)> text(
        date ? g_date_time_format(date.get(), "%F") : nullptr, g_free);
    return text ? text.get() : "";
}

std::vector<std::string> LinesOf(const TokenCertificate& certificate) {
    return {certificate.subject, MessageWith(kCertificateIssuer, {certificate.issuer}),
            MessageWith(kCertificateValidity,
                        {DateOf(certificate.validFrom), DateOf(certificate.validUntil)}),
            MessageWith(kCertificateToken, {certificate.token})};
}

GtkWidget* NewLine(const std::string& text) {
    GtkWidget* const line = gtk_label_new(text.c_str());
    gtk_label_set_xalign(GTK_LABEL(line), 0);
    gtk_label_set_single_line_mode(GTK_LABEL(line), TRUE);
    gtk_label_set_ellipsize(GTK_LABEL(line), PANGO_ELLIPSIZE_END);
    return line;
}

// A screen reader reads the whole row.
GtkWidget* NewRow(const TokenCertificate& certificate) {
    GtkWidget* const box = gtk_box_new(GTK_ORIENTATION_VERTICAL, 0);
    gtk_container_set_border_width(GTK_CONTAINER(box), kRowMargin);
    std::string all;
    for (const std::string& text : LinesOf(certificate)) {
        GtkWidget* const line = NewLine(text);
        if (all.empty()) {
            MakeBold(line);
        }
        gtk_container_add(GTK_CONTAINER(box), line);
        all += (all.empty() ? "" : ", ") + text;
    }
    GtkWidget* const row = gtk_list_box_row_new();
    gtk_container_add(GTK_CONTAINER(row), box);
    atk_object_set_name(gtk_widget_get_accessible(row), all.c_str());
    return row;
}

GtkWidget* InFrame(GtkListBox* list) {
    GtkWidget* const frame = gtk_scrolled_window_new(nullptr, nullptr);
    gtk_scrolled_window_set_shadow_type(GTK_SCROLLED_WINDOW(frame), GTK_SHADOW_IN);
    gtk_scrolled_window_set_policy(GTK_SCROLLED_WINDOW(frame), GTK_POLICY_NEVER,
                                   GTK_POLICY_AUTOMATIC);
    gtk_widget_set_size_request(frame, kListWidth, kListHeight);
    gtk_container_add(GTK_CONTAINER(frame), GTK_WIDGET(list));
    return frame;
}

}  // namespace

CCertificateDialog::CCertificateDialog(GtkWindow* parent, const std::string& site,
                                       const std::vector<TokenCertificate>& certificates,
                                       Answered answered)
    : m_dialog(parent, MsgCatalog::getMessage(kCertificateDialogTitle.c_str()),
               MsgCatalog::getMessage(kUseCertificateMnemonic.c_str())),
      m_list(GTK_LIST_BOX(gtk_list_box_new())),
      m_answered(std::move(answered)) {
    assert(IsMainThread());
    m_dialog.AddText(MessageWith(kCertificateQuestion, {site}));
    for (const TokenCertificate& certificate : certificates) {
        gtk_container_add(GTK_CONTAINER(m_list), NewRow(certificate));
    }
    gtk_list_box_set_selection_mode(m_list, GTK_SELECTION_BROWSE);
    gtk_list_box_set_activate_on_single_click(m_list, FALSE);
    GtkListBoxRow* const first = gtk_list_box_get_row_at_index(m_list, 0);
    gtk_list_box_select_row(m_list, first);
    m_dialog.Add(InFrame(m_list), true);
    g_signal_connect(m_list, "row-activated", G_CALLBACK(onRowActivated), this);
    g_signal_connect(m_dialog.Get(), "response", G_CALLBACK(onResponse), this);
    m_dialog.Show(GTK_WIDGET(first));
}

CCertificateDialog::~CCertificateDialog() {
    assert(IsMainThread());
    RemoveSource(m_acceptSource);
}

// The list still uses its row when this returns.
void CCertificateDialog::onRowActivated(GtkListBox* /*list*/, GtkListBoxRow* /*row*/,
                                        CCertificateDialog* self) {
    RemoveSource(self->m_acceptSource);
    self->m_acceptSource = g_idle_add(onAccept, self);
}

gboolean CCertificateDialog::onAccept(gpointer self) {
    auto* const dialog = static_cast<CCertificateDialog*>(self);
    dialog->m_acceptSource = 0;
    dialog->m_dialog.Accept();
    return G_SOURCE_REMOVE;
}

void CCertificateDialog::onResponse(GtkDialog* /*dialog*/, int response, CCertificateDialog* self) {
    GtkListBoxRow* const row = gtk_list_box_get_selected_row(self->m_list);
    std::optional<std::size_t> chosen;
    if (response == GTK_RESPONSE_ACCEPT && row != nullptr) {
        chosen = static_cast<std::size_t>(gtk_list_box_row_get_index(row));
    }
    const Answered answered = self->m_answered;
    answered(chosen);
}
