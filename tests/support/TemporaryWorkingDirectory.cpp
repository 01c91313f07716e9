#include "TemporaryWorkingDirectory.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include "HostSettings.h"

namespace wctest {

TemporaryWorkingDirectory::TemporaryWorkingDirectory() : previous_(QDir::currentPath()) {
    if (dir_.isValid()) {
        QDir::setCurrent(dir_.path());
        wcref::setApplicationDir(dir_.path());
    }
}

TemporaryWorkingDirectory::~TemporaryWorkingDirectory() {
    QDir::setCurrent(previous_);
    wcref::setApplicationDir(QString());
}

QByteArray readFile(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

bool writeFile(const QString& path, const QByteArray& bytes) {
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

}  // namespace wctest
