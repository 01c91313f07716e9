#pragma once
// A fresh working directory (and application directory of the reference services) for one
// test, so that "./ERFconfig/" and configuration files never touch the source tree.

#include <QString>
#include <QTemporaryDir>

namespace wctest {

class TemporaryWorkingDirectory {
public:
    TemporaryWorkingDirectory();
    ~TemporaryWorkingDirectory();
    TemporaryWorkingDirectory(const TemporaryWorkingDirectory&) = delete;
    TemporaryWorkingDirectory& operator=(const TemporaryWorkingDirectory&) = delete;

    bool isValid() const { return dir_.isValid(); }
    QString path() const { return dir_.path(); }
    // `relative` below the directory.
    QString filePath(const QString& relative) const { return dir_.filePath(relative); }

private:
    QTemporaryDir dir_;
    QString previous_;
};

}  // namespace wctest
