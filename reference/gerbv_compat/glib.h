#pragma once
// The few GLib types that libgerbv's public header names, with GLib's own layouts, so the
// importer builds where only the libgerbv package (not the GLib/GTK development headers) is
// installed. Only what gerbv.h mentions is declared; nothing here is called.

#include <stdint.h>

extern "C" {
typedef char gchar;
typedef int gint;
typedef unsigned int guint;
typedef gint gboolean;
typedef double gdouble;
typedef void* gpointer;
typedef uint16_t guint16;
typedef uint32_t guint32;

typedef struct _GArray {
    gchar* data;
    guint len;
} GArray;
typedef struct _GString GString;
typedef struct _GHashTable GHashTable;
}
