#include "ExceptionGuard.h"

#include <glog/logging.h>

#include <QFileInfo>
#include <QMessageBox>
#include <QTextCodec>
#include <QWidget>

namespace wc {
namespace {

std::string toGbk(const QString& text) {
    static QTextCodec* gbk = QTextCodec::codecForName("GBK");
    if (gbk == nullptr) {
        return text.toStdString();
    }
    return gbk->fromUnicode(text).toStdString();
}

}  // namespace

std::string exceptionPlaceLine(const char* file, int line) {
    const QString name = QFileInfo(QString::fromUtf8(file)).fileName();
    return toGbk(QStringLiteral("异常位置：") + name + QStringLiteral(" : ") +
                 QString::number(line));
}

std::string exceptionDescriptionLine(const QString& description) {
    return toGbk(QStringLiteral("异常描述：") + description);
}

void logException(const char* file, int line, const QString& description) {
    LOG(ERROR) << exceptionPlaceLine(file, line);
    LOG(ERROR) << exceptionDescriptionLine(description);
}

void reportException(QWidget* dialog, const QString& description) {
    if (dialog == nullptr) {
        return;
    }
    QMessageBox::information(dialog, QObject::tr("Information"), description, QMessageBox::Ok);
}

}  // namespace wc
