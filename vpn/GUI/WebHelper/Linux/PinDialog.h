#pragma once

#include <gtk/gtk.h>

#include <functional>
#include <string>

#include "RequestDialog.h"

/// What is known about the PIN when it is asked for.
struct PinTries {
    /// How many PINs were wrong so far.
    unsigned wrong = 0;
    /// What the token says. It does not tell how many tries are left before that.
    enum class Left { enough, few, one } left = Left::enough;
};

/// Asks the person for the PIN of a token. Main thread only.
class CPinDialog {
public:
    /// The PIN, or null for Cancel. It is wiped when this is destroyed.
    using Answered = std::function<void(const char*)>;

    /// Shows the dialog. The handler is called once, by the main loop, and may destroy this, which
    /// closes the dialog. The parent is not owned.
    CPinDialog(GtkWindow* parent, const std::string& token, const PinTries& tries,
               Answered answered);
    ~CPinDialog();
    CPinDialog(const CPinDialog&) = delete;
    CPinDialog& operator=(const CPinDialog&) = delete;

private:
    void addWarning(const std::string& text);

    static void onChanged(GtkEntry* entry, CPinDialog* self);
    static void onResponse(GtkDialog* dialog, int response, CPinDialog* self);

    CRequestDialog m_dialog;
    GtkEntry* m_entry;
    Answered m_answered;
};
