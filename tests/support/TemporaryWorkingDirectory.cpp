#include "TemporaryWorkingDirectory.h"

#include <QDir>

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

}  // namespace wctest
