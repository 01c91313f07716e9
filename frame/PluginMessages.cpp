#include "PluginMessages.h"

#include <glog/logging.h>

#include "QTpluginsManger4CAM.h"

namespace wc {

void notifyJobChanged(const QString& job, const QString& sender) {
    PluginMetaData matrix;
    matrix.sender = sender;
    matrix.receiver = module::Matrix;
    matrix.code = code::RefreshMatrix;
    matrix.values.insert(QStringLiteral("DstType"), QStringLiteral("Matrix"));
    QTpluginsManger4CAM::instance()->Ze_UpdateJob(job, matrix);

    PluginMetaData graphic;
    graphic.sender = sender;
    graphic.receiver = module::JobList;
    graphic.code = code::RefreshGraphic;
    graphic.values.insert(QStringLiteral("DstType"), QStringLiteral("Graphic"));
    QTpluginsManger4CAM::instance()->Ze_UpdateJob(job, graphic);
    LOG(INFO) << "notified matrix and job list of changes to " << job.toStdString();
}

}  // namespace wc
