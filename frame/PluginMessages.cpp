#include "PluginMessages.h"

#include <glog/logging.h>

#include "QTpluginsManger4CAM.h"

namespace wc {

void notifyJobChanged(const QString& job, const QString& sender) {
    auto send = [&](const QString& receiver, int code, const QString& destination) {
        PluginMetaData message;
        message.sender = sender;
        message.receiver = receiver;
        message.code = code;
        message.values.insert(QStringLiteral("DstType"), destination);
        QTpluginsManger4CAM::instance()->Ze_UpdateJob(job, message);
    };
    send(module::Matrix, code::RefreshMatrix, QStringLiteral("Matrix"));
    send(module::JobList, code::RefreshGraphic, QStringLiteral("Graphic"));
    LOG(INFO) << "notified matrix and job list of changes to " << job.toStdString();
}

}  // namespace wc
