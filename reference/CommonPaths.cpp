#include <QCoreApplication>
#include <QDir>
#include <mutex>

#include "Common.h"
#include "HostSettings.h"

namespace {

std::mutex& pathLock() {
    static std::mutex lock;
    return lock;
}

QString& applicationDirOverride() {
    static QString dir;
    return dir;
}

}  // namespace

QString Common::getPath() {
    {
        std::lock_guard<std::mutex> guard(pathLock());
        if (!applicationDirOverride().isEmpty())
            return applicationDirOverride();
    }
    if (QCoreApplication::instance() != nullptr)
        return QCoreApplication::applicationDirPath();
    return QDir::currentPath();
}

QString Common::getPath_database() {
    return getPath() + QStringLiteral("/database");
}

QString Common::getPython_Path() {
    return getPath() + QStringLiteral("/python");
}

namespace wcref {

void setApplicationDir(const QString& dir) {
    std::lock_guard<std::mutex> guard(pathLock());
    // Trailing separators would double up in the paths built below it.
    QString clean = dir.isEmpty() ? QString() : QDir::cleanPath(dir);
    applicationDirOverride() = clean;
}

}  // namespace wcref
