#include "RequestDialog.h"

#include <cassert>

#include "BuiltInMessages.h"
#include "MainThread.h"
#include "MsgCatalog.h"
#include "MsgWithArg.h"

namespace {

constexpr int kMargin = 12;
constexpr int kTextWidth = 50;  // characters

}  // namespace

std::string MessageWith(const std::string& message, std::initializer_list<std::string> arguments) {
    MsgWithArg text(message);
    for (const std::string& argument : arguments) {
        text.addArg(argument);
    }
    std::string result;
    text.format(result, true);
    return result;
}

void MakeBold(GtkWidget* label) {
    PangoAttrList* const bold = pango_attr_list_new();
    pango_attr_list_insert(bold, pango_attr_weight_new(PANGO_WEIGHT_BOLD));
    gtk_label_set_attributes(GTK_LABEL(label), bold);
    pango_attr_list_unref(bold);
}

CRequestDialog::CRequestDialog(GtkWindow* parent, const std::string& title,
                               const std::string& acceptLabel)
    : m_dialog(GTK_DIALOG(gtk_dialog_new())) {
    assert(IsMainThread());
    GtkWindow* const window = GTK_WINDOW(m_dialog);
    gtk_window_set_title(window, title.c_str());
    gtk_window_set_transient_for(window, parent);
    gtk_window_set_position(window, GTK_WIN_POS_CENTER_ON_PARENT);
    gtk_dialog_add_button(m_dialog, MsgCatalog::getMessage(kCancelMnemonic.c_str()).c_str(),
                          GTK_RESPONSE_CANCEL);
    gtk_dialog_add_button(m_dialog, acceptLabel.c_str(), GTK_RESPONSE_ACCEPT);
    gtk_dialog_set_default_response(m_dialog, GTK_RESPONSE_ACCEPT);
    GtkBox* const content = GTK_BOX(gtk_dialog_get_content_area(m_dialog));
    gtk_box_set_spacing(content, kMargin);
    gtk_container_set_border_width(GTK_CONTAINER(content), kMargin);
}

CRequestDialog::~CRequestDialog() {
    assert(IsMainThread());
    gtk_widget_destroy(GTK_WIDGET(m_dialog));
}

GtkWidget* CRequestDialog::AddText(const std::string& text) {
    GtkWidget* const label = gtk_label_new(text.c_str());
    gtk_label_set_line_wrap(GTK_LABEL(label), TRUE);
    gtk_label_set_line_wrap_mode(GTK_LABEL(label), PANGO_WRAP_WORD_CHAR);
    gtk_label_set_max_width_chars(GTK_LABEL(label), kTextWidth);
    gtk_label_set_xalign(GTK_LABEL(label), 0);
    Add(label, false);
    return label;
}

void CRequestDialog::Add(GtkWidget* widget, bool isGrowing) {
    gtk_box_pack_start(GTK_BOX(gtk_dialog_get_content_area(m_dialog)), widget,
                       isGrowing ? TRUE : FALSE, TRUE, 0);
}

void CRequestDialog::SetAcceptable(bool isAcceptable) {
    gtk_dialog_set_response_sensitive(m_dialog, GTK_RESPONSE_ACCEPT, isAcceptable ? TRUE : FALSE);
}

void CRequestDialog::Accept() {
    gtk_dialog_response(m_dialog, GTK_RESPONSE_ACCEPT);
}

void CRequestDialog::Show(GtkWidget* focus) {
    gtk_widget_show_all(GTK_WIDGET(m_dialog));
    gtk_widget_grab_focus(focus);
    gtk_window_present(GTK_WINDOW(m_dialog));
}
