#pragma once
// Worker bodies run on their own thread, where nobody could catch what they throw: every one runs
// inside runProgressWorker, which logs the exception as the two error lines and reports it.

#include <QString>
#include <utility>

#include "ExceptionGuard.h"

namespace wc {

// Runs `body`; returns false and fills `error` (when given) if it threw.
template <typename Body>
bool runProgressWorker(const char* file, int line, Body&& body, QString* error = nullptr) {
    QString description;
    if (runCatching(std::forward<Body>(body), description)) {
        return true;
    }
    logException(file, line, description);
    if (error != nullptr) {
        *error = description;
    }
    return false;
}

}  // namespace wc
