#pragma once

#include <QString>

#include "PluginMetaData.h"

class QObject;

// Message passing between the host's modules. Messages are delivered synchronously.
class QTpluginsManger4CAM {
public:
    static QTpluginsManger4CAM* instance();

    // The usual way a dialog tells another module something; `sender` is its host handle.
    void recMegToPlugin(void* sender, PluginMetaData message);
    void pluginTransmitData(PluginMetaData message);
    void updateGraphic(const QString& job, PluginMetaData message);
    // Tells the job list and matrix that `job` changed.
    void Ze_UpdateJob(const QString& job, PluginMetaData message);
    void Ze_ChangeJobNameAndUpdateJob(const QString& old_name, const QString& new_name);
    QObject* getRoot();

private:
    QTpluginsManger4CAM() = default;
};
