#include "QTpluginsManger4CAM.h"

#include <QObject>

#include "PluginBus.h"

QTpluginsManger4CAM* QTpluginsManger4CAM::instance() {
    static QTpluginsManger4CAM manager;
    return &manager;
}

void QTpluginsManger4CAM::recMegToPlugin(void*, PluginMetaData message) {
    wcref::PluginBus::instance().deliver(message);
}

void QTpluginsManger4CAM::pluginTransmitData(PluginMetaData message) {
    wcref::PluginBus::instance().deliver(message);
}

void QTpluginsManger4CAM::updateGraphic(const QString&, PluginMetaData message) {
    wcref::PluginBus::instance().deliver(message);
}

void QTpluginsManger4CAM::Ze_UpdateJob(const QString& job, PluginMetaData message) {
    if (!message.values.contains(QStringLiteral("Job")))
        message.values.insert(QStringLiteral("Job"), job);
    wcref::PluginBus::instance().deliver(message);
}

// Announced to the job list as a refresh that names both the old and the new job.
void QTpluginsManger4CAM::Ze_ChangeJobNameAndUpdateJob(const QString& old_name,
                                                       const QString& new_name) {
    PluginMetaData message;
    message.sender = QStringLiteral("Widget_Common");
    message.receiver = QStringLiteral("Graphic_JobList.dll");
    message.code = 20002400;
    message.values.insert(QStringLiteral("DstType"), QStringLiteral("Graphic"));
    message.values.insert(QStringLiteral("OldJob"), old_name);
    message.values.insert(QStringLiteral("Job"), new_name);
    wcref::PluginBus::instance().deliver(message);
}

// The reference host has no module tree; a fixed object stands in for its root.
QObject* QTpluginsManger4CAM::getRoot() {
    static QObject root;
    return &root;
}
