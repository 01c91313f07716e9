#include "FabricationArchive.h"

#include <archive.h>
#include <archive_entry.h>
#include <glog/logging.h>

#include <QDateTime>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QStringList>
#include <memory>
#include <set>
#include <vector>

namespace wcref {

namespace {

struct ReadDeleter {
    void operator()(archive* a) const { archive_read_free(a); }
};
struct WriteDeleter {
    void operator()(archive* a) const { archive_write_free(a); }
};

std::string errorOf(archive* a) {
    const char* text = archive_error_string(a);
    return text != nullptr ? text : "unknown error";
}

// Why the entry may not be unpacked; empty when it may.
std::string refusal(archive_entry* entry, const std::string& name, const ArchiveLimits& limits) {
    if (name.empty() || name[0] == '/' || name[0] == '\\' || (name.size() > 1 && name[1] == ':')) {
        return "has an absolute path";
    }
    for (const QString& part : QString::fromStdString(name).split(QRegExp("[/\\\\]"))) {
        if (part == "..") {
            return "climbs out of the archive's folder";
        }
    }
    if (archive_entry_symlink(entry) != nullptr || archive_entry_hardlink(entry) != nullptr ||
        archive_entry_filetype(entry) == AE_IFLNK) {
        return "is a link";
    }
    const auto type = archive_entry_filetype(entry);
    if (type != AE_IFREG && type != AE_IFDIR) {
        return "is neither a file nor a folder";
    }
    if (archive_entry_size_is_set(entry) != 0 && archive_entry_size(entry) > limits.entry_bytes) {
        return "unpacks to more than " + std::to_string(limits.entry_bytes >> 20) + " MiB";
    }
    return {};
}

// Unpacks the data of the current entry into `path`; the reason in `why` when it fails.
bool unpackData(archive* a, const QString& path, int64_t& total, const ArchiveLimits& limits,
                std::string& why) {
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly)) {
        why =
            "cannot be written to " + path.toStdString() + ": " + file.errorString().toStdString();
        return false;
    }
    int64_t bytes = 0;
    std::vector<char> buffer(64 * 1024);
    while (true) {
        const la_ssize_t n = archive_read_data(a, buffer.data(), buffer.size());
        if (n == 0) {
            break;
        }
        if (n < 0) {
            why = "is damaged: " + errorOf(a);
            return false;
        }
        bytes += n;
        total += n;
        if (bytes > limits.entry_bytes || total > limits.total_bytes) {
            why =
                "unpacks to more than " +
                std::to_string(
                    (bytes > limits.entry_bytes ? limits.entry_bytes : limits.total_bytes) >> 20) +
                " MiB";
            return false;
        }
        if (file.write(buffer.data(), n) != n) {
            why = "cannot be written to " + path.toStdString() + ": " +
                  file.errorString().toStdString();
            return false;
        }
    }
    return file.flush();
}

la_ssize_t writeToSaveFile(archive*, void* file, const void* data, size_t size) {
    const qint64 n = static_cast<QSaveFile*>(file)->write(static_cast<const char*>(data),
                                                          static_cast<qint64>(size));
    return n < 0 ? -1 : static_cast<la_ssize_t>(n);
}

bool addFile(archive* a, const QString& path, const QString& name, std::string& why) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        why = "cannot read " + path.toStdString();
        return false;
    }
    const QByteArray data = file.readAll();
    std::unique_ptr<archive_entry, void (*)(archive_entry*)> entry(archive_entry_new(),
                                                                   &archive_entry_free);
    archive_entry_set_pathname(entry.get(), name.toUtf8().constData());
    archive_entry_set_size(entry.get(), data.size());
    archive_entry_set_filetype(entry.get(), AE_IFREG);
    archive_entry_set_perm(entry.get(), 0644);
    archive_entry_set_mtime(entry.get(), QFileInfo(path).lastModified().toSecsSinceEpoch(), 0);
    if (archive_write_header(a, entry.get()) != ARCHIVE_OK ||
        archive_write_data(a, data.constData(), static_cast<size_t>(data.size())) != data.size()) {
        why = "cannot add " + name.toStdString() + ": " + errorOf(a);
        return false;
    }
    return true;
}

}  // namespace

bool FabricationArchive::isArchiveName(const std::string& path) {
    const QString name = QString::fromStdString(path).toLower();
    return name.endsWith(".zip") || name.endsWith(".tar.gz") || name.endsWith(".tgz");
}

bool FabricationArchive::unpack(const std::string& path, const std::string& folder,
                                std::string& message, const ArchiveLimits& limits) {
    const std::string what = "archive \"" + path + "\"";
    std::unique_ptr<archive, ReadDeleter> a(archive_read_new());
    archive_read_support_filter_gzip(a.get());
    archive_read_support_format_zip(a.get());
    archive_read_support_format_tar(a.get());
    if (archive_read_open_filename(a.get(), path.c_str(), 64 * 1024) != ARCHIVE_OK) {
        message = what + " cannot be read: " + errorOf(a.get());
        return false;
    }
    QDir into(QString::fromStdString(folder));
    std::set<QString> written;
    const auto refuse = [&](const std::string& why) {
        for (const QString& name : written) {
            into.remove(name);
        }
        message = what + " is refused: " + why;
        return false;
    };
    int64_t total = 0;
    int count = 0;
    archive_entry* entry = nullptr;
    while (true) {
        const int r = archive_read_next_header(a.get(), &entry);
        if (r == ARCHIVE_EOF) {
            break;
        }
        if (r < ARCHIVE_WARN) {
            return refuse("it is damaged after " + std::to_string(count) +
                          " entries: " + errorOf(a.get()));
        }
        const char* raw = archive_entry_pathname(entry);
        const std::string name = raw != nullptr ? raw : "";
        if (++count > limits.entries) {
            return refuse("it holds more than " + std::to_string(limits.entries) + " entries");
        }
        const std::string why = refusal(entry, name, limits);
        if (!why.empty()) {
            return refuse("entry \"" + name + "\" " + why);
        }
        if (archive_entry_filetype(entry) == AE_IFDIR) {
            continue;
        }
        const QString base = QFileInfo(QString::fromStdString(name)).fileName();
        if (base.isEmpty() || base.startsWith('.')) {
            continue;  // hidden files: folder listings and resource forks, no layers
        }
        if (written.count(base) != 0) {
            return refuse("entry \"" + name + "\" has the name of an earlier file");
        }
        written.insert(base);
        std::string data_why;
        if (!unpackData(a.get(), into.filePath(base), total, limits, data_why)) {
            return refuse("entry \"" + name + "\" " + data_why);
        }
    }
    LOG(INFO) << what << ": " << written.size() << " files unpacked into " << folder;
    return true;
}

bool FabricationArchive::writeZip(const std::string& folder, const std::string& path,
                                  std::string& message) {
    const QDir from(QString::fromStdString(folder));
    QStringList files;
    for (QDirIterator it(from.path(), QDir::Files, QDirIterator::Subdirectories); it.hasNext();) {
        files << from.relativeFilePath(it.next());
    }
    files.sort();
    QSaveFile out(QString::fromStdString(path));
    if (!out.open(QIODevice::WriteOnly)) {
        message = "cannot write " + path + ": " + out.errorString().toStdString();
        return false;
    }
    std::unique_ptr<archive, WriteDeleter> a(archive_write_new());
    archive_write_set_format_zip(a.get());
    archive_write_set_bytes_in_last_block(a.get(), 1);
    if (archive_write_open(a.get(), &out, nullptr, &writeToSaveFile, nullptr) != ARCHIVE_OK) {
        message = "cannot write " + path + ": " + errorOf(a.get());
        return false;
    }
    for (const QString& name : files) {
        std::string why;
        if (!addFile(a.get(), from.filePath(name), name, why)) {
            message = "cannot write " + path + ": " + why;
            return false;
        }
    }
    // A full disk shows only when the buffer is flushed; commit() alone would still replace
    // the file.
    if (archive_write_close(a.get()) != ARCHIVE_OK || !out.flush() || !out.commit()) {
        message = "cannot write " + path + ": " + out.errorString().toStdString();
        return false;
    }
    return true;
}

}  // namespace wcref
