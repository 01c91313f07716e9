#pragma once

#include <QMetaType>
#include <QString>
#include <QVariantMap>

// A message between modules of the host. The receiver reads `payload` in place during the call;
// it is valid only while the call lasts.
struct PluginMetaData {
    QString sender;    // module file name, e.g. "Graphic_MenuBar_Analysis.dll"
    QString receiver;  // e.g. "Graphic_View.dll"
    int code = 0;
    QVariantMap values;
    void* payload = nullptr;
};

Q_DECLARE_METATYPE(PluginMetaData)
