#include "LimitCheck.h"

#include "Korvo_UIAPI.h"

namespace wc {

double displayLimit(const void* handle, double limit_mil) {
    return Korvo::UIAPI::getUnitJudgeDouble(handle, limit_mil);
}

QString limitText(const void* handle, double limit_mil) {
    QString text = QString::number(displayLimit(handle, limit_mil), 'f', 3);
    while (text.endsWith(QLatin1Char('0'))) {
        text.chop(1);
    }
    if (text.endsWith(QLatin1Char('.'))) {
        text.chop(1);
    }
    return text;
}

bool withinZeroTo(const void* handle, const QString& text, double limit_mil) {
    bool ok = false;
    const double value = text.toDouble(&ok);
    // A hair of slack so that a limit shown and typed back in the same unit still passes.
    return ok && value >= 0.0 && value <= displayLimit(handle, limit_mil) + 1e-9;
}

}  // namespace wc
