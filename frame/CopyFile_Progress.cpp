#include "CopyFile_Progress.h"

#include <glog/logging.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include "ProgressWorkerGuard.h"

namespace {

// True when `path` is `folder` or lies below it, links resolved. `path` need not exist yet: its
// nearest existing ancestor is resolved and the rest appended.
bool isInside(const QString& folder, const QString& path) {
    const QString outer = QFileInfo(folder).canonicalFilePath();
    const QString wanted = QDir::cleanPath(QFileInfo(path).absoluteFilePath());
    QString existing = wanted;
    while (!QFileInfo::exists(existing) && existing != QDir::rootPath()) {
        existing = QFileInfo(existing).absolutePath();
    }
    const QString full = QFileInfo(existing).canonicalFilePath() + wanted.mid(existing.size());
    return full == outer || full.startsWith(outer + QLatin1Char('/'));
}

// `stop` (may be null) is asked before every file.
bool copyTree(const QString& source, const QString& destination, bool overwrite,
              Korvo::COMMON::progress_state* stop) {
    const QFileInfo info(source);
    if (!info.isDir() || !info.isReadable()) {
        LOG(ERROR) << "Cannot read the folder " << source.toStdString();
        return false;
    }
    if (!QDir().mkpath(destination)) {
        LOG(ERROR) << "Cannot create the folder " << destination.toStdString();
        return false;
    }
    const QDir target(destination);
    bool ok = true;
    const QFileInfoList entries = QDir(source).entryInfoList(
        QDir::Files | QDir::Dirs | QDir::NoDotAndDotDot | QDir::Hidden | QDir::System, QDir::Name);
    for (const QFileInfo& entry : entries) {
        if (stop != nullptr && stop->is_stop_requested()) {
            return false;
        }
        const QString to = target.filePath(entry.fileName());
        if (entry.isDir()) {
            // A linked folder could lead back into the tree being copied.
            if (entry.isSymLink()) {
                LOG(INFO) << "Skipped the linked folder " << entry.filePath().toStdString();
                continue;
            }
            ok = copyTree(entry.filePath(), to, overwrite, stop) && ok;
            continue;
        }
        if (QFileInfo::exists(to) || QFileInfo(to).isSymLink()) {
            if (!overwrite) {
                continue;
            }
            if (!QFile::remove(to)) {
                LOG(ERROR) << "Cannot replace the file " << to.toStdString();
                ok = false;
                continue;
            }
        }
        if (!QFile::copy(entry.filePath(), to)) {
            LOG(ERROR) << "Cannot copy " << entry.filePath().toStdString() << " to "
                       << to.toStdString();
            ok = false;
        }
    }
    return ok;
}

bool copyChecked(const QString& source, const QString& destination, bool overwrite,
                 Korvo::COMMON::progress_state* stop) {
    if (QFileInfo(source).isDir() && isInside(source, destination)) {
        LOG(ERROR) << "Cannot copy the folder " << source.toStdString() << " into itself ("
                   << destination.toStdString() << ")";
        return false;
    }
    return copyTree(source, destination, overwrite, stop);
}

}  // namespace

CopyFile_Progress::CopyFile_Progress(std::vector<FolderPair> folders, bool overwrite) {
    run_.task().folders = std::move(folders);
    run_.task().overwrite = overwrite;
}

void CopyFile_Progress::process(Korvo::COMMON::progress_value<void>* block) {
    if (block == nullptr) {
        return;
    }
    auto* task = static_cast<Task*>(block);
    bool ok = true;
    const bool ran = wc::runProgressWorker(__FILE__, __LINE__, [&] {
        const std::size_t count = task->folders.size();
        for (std::size_t i = 0; i < count; ++i) {
            if (task->is_stop_requested()) {
                ok = false;
                break;
            }
            const FolderPair& pair = task->folders[i];
            if (!QDir(pair.second).exists() && !QDir().mkpath(pair.second)) {
                LOG(ERROR) << "Cannot create the folder " << pair.second.toStdString();
                ok = false;
            } else {
                ok = copyChecked(pair.first, pair.second, task->overwrite, task) && ok;
            }
            task->set_value(100.0 * static_cast<double>(i + 1) / static_cast<double>(count));
        }
    });
    std::lock_guard<std::mutex> guard(task->lock);
    task->succeeded = ran && ok;
}

bool CopyFile_Progress::CopyDirFile(const QString& source, const QString& destination,
                                    bool overwrite) {
    bool ok = false;
    wc::runProgressWorker(__FILE__, __LINE__,
                          [&] { ok = copyChecked(source, destination, overwrite, nullptr); });
    return ok;
}
