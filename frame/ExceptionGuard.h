#pragma once
// Every slot body of a dialog runs inside guarded(): a thrown text or standard exception is
// logged as the two error lines of the system, shown in an "Information" box, and the dialog
// stays usable.

#include <QString>
#include <exception>
#include <string>
#include <utility>

class QWidget;

namespace wc {

// The two log lines, "异常位置：" + file + " : " + line and "异常描述：" + description, as GBK
// bytes (the code page the host's log readers expect).
std::string exceptionPlaceLine(const char* file, int line);
std::string exceptionDescriptionLine(const QString& description);
void logException(const char* file, int line, const QString& description);

// Shows `description` under "Information" on top of `dialog` (no box when dialog is null).
void reportException(QWidget* dialog, const QString& description);

// Runs `body`; when it throws a text or standard exception (or anything else), returns false
// with the exception's text in `description`.
template <typename Body>
bool runCatching(Body&& body, QString& description) {
    try {
        std::forward<Body>(body)();
        return true;
    } catch (const std::exception& e) {
        description = QString::fromLocal8Bit(e.what());
    } catch (const std::string& text) {
        description = QString::fromStdString(text);
    } catch (const QString& text) {
        description = text;
    } catch (const char* text) {
        description = QString::fromUtf8(text);
    } catch (...) {
        description = QStringLiteral("Unknown exception");
    }
    return false;
}

template <typename Body>
bool guarded(QWidget* dialog, const char* file, int line, Body&& body) {
    QString description;
    if (runCatching(std::forward<Body>(body), description)) {
        return true;
    }
    logException(file, line, description);
    reportException(dialog, description);
    return false;
}

}  // namespace wc

// Guards a slot body: WC_GUARDED({ ... });
#define WC_GUARDED(...) ::wc::guarded(this, __FILE__, __LINE__, [&]() __VA_ARGS__)
