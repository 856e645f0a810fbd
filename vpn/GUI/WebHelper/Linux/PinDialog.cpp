#include "PinDialog.h"

#include <cassert>
#include <utility>

#include "BuiltInMessages.h"
#include "MainThread.h"
#include "MsgCatalog.h"

CPinDialog::CPinDialog(GtkWindow* parent, const std::string& token, const PinTries& tries,
                       Answered answered)
    : m_dialog(parent, MsgCatalog::getMessage(kPinDialogTitle.c_str()),
               MsgCatalog::getMessage(kContinueMnemonic.c_str())),
      m_entry(GTK_ENTRY(gtk_entry_new())),
      m_answered(std::move(answered)) {
    assert(IsMainThread());
    GtkWidget* const question = m_dialog.AddText(MessageWith(kPinQuestion, {token}));
    if (tries.wrong != 0) {
        addWarning(MessageWith(kPinWrong, {std::to_string(tries.wrong)}));
    }
    if (tries.left == PinTries::Left::one) {
        addWarning(MsgCatalog::getMessage(kPinLastTry.c_str()));
    } else if (tries.left == PinTries::Left::few) {
        addWarning(MsgCatalog::getMessage(kPinFewTries.c_str()));
    }
    gtk_entry_set_visibility(m_entry, FALSE);
    gtk_entry_set_input_purpose(m_entry, GTK_INPUT_PURPOSE_PASSWORD);
    gtk_entry_set_activates_default(m_entry, TRUE);
    atk_object_add_relationship(gtk_widget_get_accessible(GTK_WIDGET(m_entry)),
                                ATK_RELATION_LABELLED_BY, gtk_widget_get_accessible(question));
    m_dialog.Add(GTK_WIDGET(m_entry), false);
    m_dialog.SetAcceptable(false);
    g_signal_connect(m_entry, "changed", G_CALLBACK(onChanged), this);
    g_signal_connect(m_dialog.Get(), "response", G_CALLBACK(onResponse), this);
    m_dialog.Show(GTK_WIDGET(m_entry));
}

CPinDialog::~CPinDialog() {
    assert(IsMainThread());
    g_signal_handlers_disconnect_by_data(m_entry, this);
    // The toolkit overwrites what it deletes.
    gtk_entry_set_text(m_entry, "");
}

void CPinDialog::addWarning(const std::string& text) {
    // The toolkit's colour for errors can hardly be read on a dark ground.
    MakeBold(m_dialog.AddText(text));
}

// An empty PIN would only use up a try.
void CPinDialog::onChanged(GtkEntry* entry, CPinDialog* self) {
    self->m_dialog.SetAcceptable(gtk_entry_get_text_length(entry) != 0);
}

void CPinDialog::onResponse(GtkDialog* /*dialog*/, int response, CPinDialog* self) {
    const Answered answered = self->m_answered;
    answered(response == GTK_RESPONSE_ACCEPT ? gtk_entry_get_text(self->m_entry) : nullptr);
}
