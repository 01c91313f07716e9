#include "Import_Progress.h"

#include <glog/logging.h>

#include <QDir>
#include <QFileInfo>
#include <string>
#include <utility>

#include "CopyFile_Progress.h"
#include "ProgressWorkerGuard.h"

#ifdef _WIN32
#include <shellapi.h>
#include <windows.h>
#else
#include <spawn.h>
#include <sys/wait.h>
#include <cerrno>
extern char** environ;
#endif

namespace {

#ifndef _WIN32
// The program path is quoted so that blanks and shell characters in it stay part of the name;
// the arguments are a command line of their own and go to the shell as written.
std::string shellQuoted(const QString& text) {
    QString quoted = text;
    quoted.replace(QLatin1Char('\''), QStringLiteral("'\\''"));
    return (QLatin1Char('\'') + quoted + QLatin1Char('\'')).toStdString();
}
#endif

}  // namespace

Import_Progress::Import_Progress(QString program, QString arguments, QString unpacked,
                                 QString destination, bool overwrite) {
    Task& task = run_.task();
    task.program = std::move(program);
    task.arguments = std::move(arguments);
    task.unpacked = std::move(unpacked);
    task.destination = std::move(destination);
    task.overwrite = overwrite;
}

long Import_Progress::exitCode() {
    Task& task = run_.task();
    std::lock_guard<std::mutex> guard(task.lock);
    return task.exit_code;
}

void Import_Progress::process(Korvo::COMMON::progress_value<void>* block) {
    if (block == nullptr) {
        return;
    }
    auto* task = static_cast<Task*>(block);
    bool ok = false;
    long code = 0;
    wc::runProgressWorker(__FILE__, __LINE__, [&] {
        if (!CheckDir(task->unpacked)) {
            LOG(ERROR) << "Cannot create the folder " << task->unpacked.toStdString();
            return;
        }
        if (!task->program.isEmpty()) {
            code = mysystem(task->program, task->arguments);
            if (code != 0) {
                LOG(ERROR) << task->program.toStdString() << " ended with " << code;
                return;
            }
        }
        task->set_value(50.0);
        if (task->is_stop_requested()) {
            return;
        }
        if (!CheckDir(task->destination)) {
            LOG(ERROR) << "Cannot create the folder " << task->destination.toStdString();
            return;
        }
        ok = CopyDirFiles(task->unpacked, task->destination, task->overwrite);
        task->set_value(100.0);
    });
    std::lock_guard<std::mutex> guard(task->lock);
    task->succeeded = ok;
    task->exit_code = code;
}

bool Import_Progress::CopyDirFiles(const QString& source, const QString& destination,
                                   bool overwrite) {
    return CopyFile_Progress::CopyDirFile(source, destination, overwrite);
}

bool Import_Progress::CheckDir(const QString& path) {
    if (path.isEmpty()) {
        return false;
    }
    return QDir().mkpath(path) && QFileInfo(path).isDir();
}

#ifdef _WIN32

namespace {

bool toWide(const QString& text, std::wstring& wide) {
    const QByteArray utf8 = text.toUtf8();
    if (utf8.isEmpty()) {
        wide.clear();
        return true;
    }
    const int size = MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, utf8.constData(),
                                         utf8.size(), nullptr, 0);
    if (size <= 0) {
        return false;
    }
    wide.assign(static_cast<std::size_t>(size), L'\0');
    return MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, utf8.constData(), utf8.size(),
                               &wide[0], size) == size;
}

}  // namespace

long Import_Progress::mysystem(const QString& program, const QString& arguments) {
    std::wstring file;
    std::wstring parameters;
    if (!toWide(program, file) || !toWide(arguments, parameters)) {
        return static_cast<long>(E_FAIL);
    }
    SHELLEXECUTEINFOW info = {};
    info.cbSize = sizeof(info);
    info.fMask = SEE_MASK_NOCLOSEPROCESS;
    info.lpVerb = nullptr;
    info.lpFile = file.c_str();
    info.lpParameters = parameters.c_str();
    info.nShow = SW_SHOWNORMAL;
    if (!ShellExecuteExW(&info)) {
        return static_cast<long>(HRESULT_FROM_WIN32(GetLastError()));
    }
    if (info.hProcess == nullptr) {
        return 0;  // handed to a running application: nothing to wait for
    }
    WaitForSingleObject(info.hProcess, INFINITE);
    DWORD code = 0;
    GetExitCodeProcess(info.hProcess, &code);
    CloseHandle(info.hProcess);
    return static_cast<long>(code);
}

#else

long Import_Progress::mysystem(const QString& program, const QString& arguments) {
    std::string command = shellQuoted(program);
    if (!arguments.isEmpty()) {
        command += ' ';
        command += arguments.toStdString();
    }
    char shell[] = "/bin/sh";
    char flag[] = "-c";
    char* argv[] = {shell, flag, &command[0], nullptr};
    pid_t child = 0;
    const int failed = posix_spawn(&child, shell, nullptr, nullptr, argv, environ);
    if (failed != 0) {
        LOG(ERROR) << "Cannot start " << program.toStdString() << ": error " << failed;
        return -1;
    }
    int status = 0;
    while (waitpid(child, &status, 0) < 0) {
        if (errno != EINTR) {
            LOG(ERROR) << "Lost the process of " << program.toStdString();
            return -1;
        }
    }
    if (WIFEXITED(status)) {
        return WEXITSTATUS(status);
    }
    // Killed by a signal: reported as the shell would.
    return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : -1;
}

#endif
