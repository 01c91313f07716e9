#pragma once
// Copies folders on a worker task: each (source, destination) pair in turn, files and
// subfolders, creating destinations that do not exist.

#include <QString>
#include <utility>
#include <vector>

#include "ProgressTask.h"
#include "frame/WidgetCommonExport.h"
#include "progress_value.h"

class WIDGET_COMMON_EXPORT CopyFile_Progress {
public:
    using FolderPair = std::pair<QString, QString>;

    CopyFile_Progress(std::vector<FolderPair> folders, bool overwrite);

    // Starts the copy and returns at once.
    void do_process() { run_.start(); }
    double get_value() { return run_.value(); }
    bool isFinish() const { return run_.finished(); }
    // Every pair copied completely; meaningful once isFinish().
    bool succeeded() { return run_.succeeded(); }
    // For a stop request from the GUI thread; the copy stops before the next file.
    Korvo::COMMON::progress_value<void>& block() { return run_.task(); }

    // The worker body. `block` must be this class's own block (the one do_process passes).
    static void process(Korvo::COMMON::progress_value<void>* block);

    // Copies the files and subfolders of `source` into `destination`, creating it. Without
    // `overwrite` existing files are kept. False when the source cannot be read or a file fails
    // (the rest is still copied).
    static bool CopyDirFile(const QString& source, const QString& destination, bool overwrite);

private:
    struct Task : Korvo::COMMON::progress_value<void> {
        std::vector<FolderPair> folders;
        bool overwrite = false;
        bool succeeded = false;  // under lock
    };

    wc::ProgressTask<Task> run_{&CopyFile_Progress::process};
};
