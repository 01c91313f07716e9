#pragma once
// Imports a job package on a worker task: runs the unpacking program (when one is given) into a
// folder, then copies that folder into the job's folder.

#include <QString>

#include "ProgressTask.h"
#include "frame/WidgetCommonExport.h"
#include "progress_value.h"

class WIDGET_COMMON_EXPORT Import_Progress {
public:
    // `program` with `arguments` is run first (skipped when `program` is empty) and is expected
    // to fill `unpacked`; then `unpacked` is copied into `destination`.
    Import_Progress(QString program, QString arguments, QString unpacked, QString destination,
                    bool overwrite);

    // Starts the import and returns at once.
    void do_process() { run_.start(); }
    double get_value() { return run_.value(); }
    bool isFinish() const { return run_.finished(); }
    // Meaningful once isFinish(): the program ended with 0 and everything was copied.
    bool succeeded() { return run_.succeeded(); }
    // The unpacking program's exit code (0 when none was run).
    long exitCode();
    // For a stop request from the GUI thread; honoured between the stages.
    Korvo::COMMON::progress_value<void>& block() { return run_.task(); }

    // The worker body. `block` must be this class's own block (the one do_process passes).
    static void process(Korvo::COMMON::progress_value<void>* block);

    static bool CopyDirFiles(const QString& source, const QString& destination, bool overwrite);
    // Creates `path` with its parents; true when it exists afterwards.
    static bool CheckDir(const QString& path);
    // Runs `program` with `arguments` (one command-line text) through the shell and waits for it
    // without a time limit. Returns its exit code; a program that cannot be started gives a
    // non-zero code.
    static long mysystem(const QString& program, const QString& arguments);

private:
    struct Task : Korvo::COMMON::progress_value<void> {
        QString program;
        QString arguments;
        QString unpacked;
        QString destination;
        bool overwrite = false;
        bool succeeded = false;  // under lock
        long exit_code = 0;      // under lock
    };

    wc::ProgressTask<Task> run_{&Import_Progress::process};
};
