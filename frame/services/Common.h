#pragma once

#include <QString>

// Paths of the installation.
class Common {
public:
    // The application directory; configuration lies below its "config" folder.
    static QString getPath();
    static QString getPath_database();
    static QString getPython_Path();
};
