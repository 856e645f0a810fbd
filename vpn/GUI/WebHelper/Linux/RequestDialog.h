#pragma once

#include <gtk/gtk.h>

#include <initializer_list>
#include <string>

/// A message in the user's language, with these texts in place of its conversions. Any thread.
[[nodiscard]] std::string MessageWith(const std::string& message,
                                      std::initializer_list<std::string> arguments);

/// Shows a label's whole text in bold.
void MakeBold(GtkWidget* label);

/// A dialog of the toolkit in front of the window: some widgets above the buttons Cancel and
/// another one. The window stays usable behind it, so that it can be closed. Main thread only.
class CRequestDialog {
public:
    /// The labels' mnemonics are marked by "_". The parent is not owned.
    CRequestDialog(GtkWindow* parent, const std::string& title, const std::string& acceptLabel);
    /// Closes the dialog.
    ~CRequestDialog();
    CRequestDialog(const CRequestDialog&) = delete;
    CRequestDialog& operator=(const CRequestDialog&) = delete;

    /// Adds a text that wraps. It shows what it is given: nothing in it is markup.
    GtkWidget* AddText(const std::string& text);
    /// Adds a widget, which may fill the free room.
    void Add(GtkWidget* widget, bool isGrowing);
    /// Whether the accepting button can be pressed.
    void SetAcceptable(bool isAcceptable);
    /// The same as pressing that button.
    void Accept();
    void Show(GtkWidget* focus);

    /// "response": GTK_RESPONSE_ACCEPT, or anything else for Cancel, Escape and closing.
    [[nodiscard]] GtkDialog* Get() const { return m_dialog; }

private:
    GtkDialog* m_dialog;
};
