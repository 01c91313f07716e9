// The signal layer check's template reader: any bytes are refused with a reason or read into a
// form that writes back to a template which reads back to the same form.

#include <QJsonDocument>
#include <QJsonObject>
#include <cstddef>
#include <cstdint>

#include "analysis/SignalCheckForm.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const QJsonDocument document = QJsonDocument::fromJson(
        QByteArray::fromRawData(reinterpret_cast<const char*>(data), static_cast<int>(size)));
    if (!document.isObject()) {
        return 0;
    }
    wc::SignalCheckForm form;
    QString error;
    if (!wc::readSignalCheckTemplate(document.object(), form, &error)) {
        if (error.isEmpty()) {
            __builtin_trap();  // a refusal always says why
        }
        return 0;
    }
    const QJsonObject written = wc::signalCheckTemplate(form);
    wc::SignalCheckForm again;
    if (!wc::readSignalCheckTemplate(written, again, &error) ||
        wc::signalCheckTemplate(again) != written) {
        __builtin_trap();
    }
    return 0;
}
