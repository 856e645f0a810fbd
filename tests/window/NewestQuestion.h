#pragma once

#include <webkit2/webkit2.h>

#include "GObjectPtr.h"

/// Keeps the engine's newest question for a password or a certificate, of whichever web view of
/// this process.
class NewestQuestion {
public:
    NewestQuestion();
    ~NewestQuestion();
    NewestQuestion(const NewestQuestion&) = delete;
    NewestQuestion& operator=(const NewestQuestion&) = delete;

    /// As the engine does by itself, now and then, when it asks before it tells that the load has
    /// started. There must be a question.
    void Cancel();

private:
    static gboolean onAuthenticate(GSignalInvocationHint* hint, guint count, const GValue* values,
                                   gpointer self);

    GObjectPtr<WebKitAuthenticationRequest> m_question;
    guint m_signal;
    gulong m_hook;
};
