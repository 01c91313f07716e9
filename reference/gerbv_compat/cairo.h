#pragma once
extern "C" {
typedef struct _cairo cairo_t;
}
