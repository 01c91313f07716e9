#pragma once
// Export of the library's classes from the shared library. Classes need the attribute on
// Windows even though free functions are exported wholesale by the build: a host that connects
// to a dialog's signals reads the class's static meta-object, which is data.

#include <QtGlobal>

#if defined(WIDGET_COMMON_LIBRARY)
#define WIDGET_COMMON_EXPORT Q_DECL_EXPORT
#else
#define WIDGET_COMMON_EXPORT Q_DECL_IMPORT
#endif
