#pragma once
// See glib.h in this folder: layouts of the GTK 2 types libgerbv's header names.
#include <glib.h>

extern "C" {
typedef struct _GdkColor {
    guint32 pixel;
    guint16 red;
    guint16 green;
    guint16 blue;
} GdkColor;
typedef struct _GdkDrawable GdkPixmap;
}
