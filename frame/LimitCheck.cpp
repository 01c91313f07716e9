#include "LimitCheck.h"

#include "Korvo_UIAPI.h"

namespace wc {

int displayLimit(const void* handle, double limit_mil) {
    return Korvo::UIAPI::getUnitJudgeData(handle, limit_mil);
}

QString limitText(const void* handle, double limit_mil) {
    return QString::number(displayLimit(handle, limit_mil));
}

bool withinZeroTo(const void* handle, const QString& text, double limit_mil) {
    bool ok = false;
    const double value = text.toDouble(&ok);
    return ok && value >= 0.0 && value <= displayLimit(handle, limit_mil);
}

}  // namespace wc
