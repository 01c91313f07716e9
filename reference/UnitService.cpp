#include "UnitService.h"

#include <glog/logging.h>
#include <QRegularExpression>
#include <cmath>

#include "HostSettings.h"

namespace wcref {

UnitService& UnitService::instance() {
    static UnitService service;
    return service;
}

int UnitService::unit(const void* handle) const {
    std::lock_guard<std::mutex> guard(lock_);
    auto it = units_.find(handle);
    return it == units_.end() ? default_unit_ : it->second;
}

bool UnitService::hasOwnUnit(const void* handle) const {
    std::lock_guard<std::mutex> guard(lock_);
    return units_.count(handle) != 0;
}

int UnitService::previousUnit(const void* handle) const {
    std::lock_guard<std::mutex> guard(lock_);
    auto it = previous_.find(handle);
    if (it != previous_.end())
        return it->second;
    auto current = units_.find(handle);
    return current == units_.end() ? default_unit_ : current->second;
}

bool UnitService::setUnit(const void* handle, int unit) {
    if (!isValidUnit(unit)) {
        LOG(ERROR) << "unknown unit code " << unit << ", unit left unchanged";
        return false;
    }
    std::lock_guard<std::mutex> guard(lock_);
    auto it = units_.find(handle);
    previous_[handle] = it == units_.end() ? default_unit_ : it->second;
    units_[handle] = unit;
    return true;
}

int UnitService::defaultUnit() const {
    std::lock_guard<std::mutex> guard(lock_);
    return default_unit_;
}

bool UnitService::setDefaultUnit(int unit) {
    if (!isValidUnit(unit)) {
        LOG(ERROR) << "unknown unit code " << unit << ", default unit left unchanged";
        return false;
    }
    std::lock_guard<std::mutex> guard(lock_);
    default_unit_ = unit;
    return true;
}

void UnitService::reset() {
    std::lock_guard<std::mutex> guard(lock_);
    default_unit_ = kImperial;
    units_.clear();
    previous_.clear();
}

double UnitService::milToDisplay(double mil, int unit) {
    return unit == kMetric ? mil * kMmPerMil : mil;
}

double UnitService::displayToMil(double display, int unit) {
    return unit == kMetric ? display / kMmPerMil : display;
}

double UnitService::displayToEngine(double display, int unit) {
    return display * (unit == kMetric ? kNmPerMm : kNmPerMil);
}

double UnitService::engineToDisplay(double engine, int unit) {
    return engine / (unit == kMetric ? kNmPerMm : kNmPerMil);
}

double UnitService::convertDisplay(double value, int from_unit, int to_unit) {
    if (from_unit == to_unit)
        return value;
    return milToDisplay(displayToMil(value, from_unit), to_unit);
}

QString UnitService::compactNumber(double value) {
    QString text = QString::number(value, 'f', 4);
    while (text.endsWith(QLatin1Char('0')))
        text.chop(1);
    if (text.endsWith(QLatin1Char('.')))
        text.chop(1);
    if (text == QLatin1String("-0"))
        text = QStringLiteral("0");
    return text;
}

QString UnitService::convertSymbol(const QString& symbol, int from_unit, int to_unit) {
    if (from_unit == to_unit)
        return symbol;
    static const QRegularExpression number(QStringLiteral("[0-9]+(?:\\.[0-9]+)?|\\.[0-9]+"));
    QString out;
    int last = 0;
    auto it = number.globalMatch(symbol);
    while (it.hasNext()) {
        const QRegularExpressionMatch match = it.next();
        out += symbol.mid(last, match.capturedStart() - last);
        out += compactNumber(convertDisplay(match.captured().toDouble(), from_unit, to_unit));
        last = match.capturedEnd();
    }
    out += symbol.mid(last);
    return out;
}

// ---- control API ----------------------------------------------------------------------------

void setDefaultUnit(int unit) {
    UnitService::instance().setDefaultUnit(unit);
}

int defaultUnit() {
    return UnitService::instance().defaultUnit();
}

}  // namespace wcref
