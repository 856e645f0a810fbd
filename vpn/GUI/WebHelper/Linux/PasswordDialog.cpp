#include "PasswordDialog.h"

#include <cassert>

#include "BuiltInMessages.h"
#include "MainThread.h"
#include "MsgCatalog.h"

namespace {

// The view's children are the engine's dialogs, which it does not tell of otherwise.
GtkWidget* NewestDialog(WebKitWebView* webView) {
    GtkWidget* newest = nullptr;
    gtk_container_forall(
        GTK_CONTAINER(webView),
        [](GtkWidget* dialog, gpointer found) { *static_cast<GtkWidget**>(found) = dialog; },
        &newest);
    return newest;
}

void FindEntry(GtkWidget* widget, gpointer found) {
    auto** const entry = static_cast<GtkWidget**>(found);
    if (GTK_IS_ENTRY(widget)) {
        *entry = *entry != nullptr ? *entry : widget;
    } else if (GTK_IS_CONTAINER(widget)) {
        gtk_container_forall(GTK_CONTAINER(widget), FindEntry, found);
    }
}

// Above the fields.
void SayThatTheTryWasWrong(GtkWidget* dialog) {
    GtkWidget* entry = nullptr;
    FindEntry(dialog, &entry);
    GtkWidget* const box =
        entry != nullptr ? gtk_widget_get_ancestor(entry, GTK_TYPE_BOX) : nullptr;
    if (box == nullptr) {
        return;  // another engine's dialog
    }
    GtkWidget* const text = gtk_label_new(MsgCatalog::getMessage(kSignInRefused.c_str()).c_str());
    gtk_style_context_add_class(gtk_widget_get_style_context(text), GTK_STYLE_CLASS_ERROR);
    gtk_box_pack_start(GTK_BOX(box), text, FALSE, FALSE, 0);
    gtk_box_reorder_child(GTK_BOX(box), text, 0);
    gtk_widget_show(text);
}

// As the dialog's own button does: without a name and a password the page is the server's refusal.
gboolean onKey(GtkWidget* dialog, GdkEventKey* event, WebKitAuthenticationRequest* request) {
    if (event->keyval != GDK_KEY_Escape) {
        return FALSE;
    }
    webkit_authentication_request_authenticate(request, nullptr);
    gtk_widget_destroy(dialog);
    return TRUE;
}

gboolean onAuthenticate(WebKitWebView* webView, WebKitAuthenticationRequest* request) {
    if (WEBKIT_WEB_VIEW_GET_CLASS(webView)->authenticate(webView, request) == FALSE) {
        return FALSE;
    }
    if (GtkWidget* const dialog = NewestDialog(webView); dialog != nullptr) {
        if (webkit_authentication_request_is_retry(request) != FALSE) {
            SayThatTheTryWasWrong(dialog);
        }
        g_signal_connect_object(dialog, "key-press-event", G_CALLBACK(onKey), request,
                                static_cast<GConnectFlags>(0));
    }
    return TRUE;
}

}  // namespace

void CompletePasswordDialogs(WebKitWebView* webView) {
    assert(IsMainThread());
    g_signal_connect(webView, "authenticate", G_CALLBACK(onAuthenticate), nullptr);
}
