#pragma once

#include <glib-object.h>

#include <memory>

/// Drops one reference of a GObject.
struct GObjectUnref {
    void operator()(gpointer object) const { g_object_unref(object); }
};

/// Owns one reference of a GObject.
template <class Type>
using GObjectPtr = std::unique_ptr<Type, GObjectUnref>;

struct GErrorFree {
    void operator()(GError* error) const { g_error_free(error); }
};

/// Owns an error that a GLib call handed out.
using GErrorPtr = std::unique_ptr<GError, GErrorFree>;

struct GStringArrayFree {
    void operator()(gchar** texts) const { g_strfreev(texts); }
};

/// Owns a vector of strings that a GLib call handed out.
using GStringArrayPtr = std::unique_ptr<gchar*, GStringArrayFree>;
