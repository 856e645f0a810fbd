#include "NewestQuestion.h"

NewestQuestion::NewestQuestion()
    : m_signal(g_signal_lookup("authenticate", WEBKIT_TYPE_WEB_VIEW)),
      m_hook(g_signal_add_emission_hook(m_signal, 0, onAuthenticate, this, nullptr)) {}

NewestQuestion::~NewestQuestion() {
    g_signal_remove_emission_hook(m_signal, m_hook);
}

void NewestQuestion::Cancel() {
    webkit_authentication_request_cancel(m_question.get());
}

gboolean NewestQuestion::onAuthenticate(GSignalInvocationHint* /*hint*/, guint /*count*/,
                                        const GValue* values, gpointer self) {
    static_cast<NewestQuestion*>(self)->m_question.reset(
        WEBKIT_AUTHENTICATION_REQUEST(g_value_dup_object(&values[1])));
    return TRUE;
}
