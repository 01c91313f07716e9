#pragma once
// A fresh working directory (and application directory of the reference services) for one
// test, so that "./ERFconfig/" and configuration files never touch the source tree.

#include <QByteArray>
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

// The whole file; empty when it cannot be read.
QByteArray readFile(const QString& path);
// Writes `bytes` to `path`, making its folders first.
bool writeFile(const QString& path, const QByteArray& bytes);

}  // namespace wctest
