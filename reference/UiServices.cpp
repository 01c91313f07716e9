// The free functions of the reference UI services: units (UnitService), ranges (RangeStore),
// view state, file utilities and host settings.

#include <glog/logging.h>
#include <QDir>
#include <QFileInfo>
#include <QGuiApplication>
#include <QRegularExpression>
#include <QSaveFile>
#include <algorithm>
#include <cmath>
#include <map>
#include <mutex>

#include "HostSettings.h"
#include "Korvo_UIAPI.h"
#include "RangeStore.h"
#include "UnitService.h"

namespace {

using wcref::UnitService;

struct ViewState {
    std::mutex lock;
    std::map<const void*, int> selected_para;
    int shift_for_test = -1;
    double contour_accuracy_mil = 0.25;
    std::string server_ip = "127.0.0.1";
    int server_port = 0;
    int timeout_ms = 30000;
};

ViewState& viewState() {
    static ViewState state;
    return state;
}

int unitOf(const void* handle) {
    return UnitService::instance().unit(handle);
}

// Limits are compared in mil with a little slack so that a value typed as the exact display
// form of a limit (2 mil = 0.0508 mm) is not lost to rounding.
bool withinMil(double mil, double min_mil, double max_mil) {
    const double slack = 1e-9 * std::max({1.0, std::fabs(min_mil), std::fabs(max_mil)});
    return mil >= min_mil - slack && mil <= max_mil + slack;
}

}  // namespace

namespace Korvo {
namespace UIAPI {

// ---- units ----------------------------------------------------------------------------------

int getUnit(const void* handle) {
    return unitOf(handle);
}

void setUnit(const void* handle, int unit) {
    UnitService::instance().setUnit(handle, unit);
}

std::string getUnitStringType(const void* handle, int flavour) {
    if (unitOf(handle) == UnitService::kMetric)
        return "mm";
    return flavour == 1 ? "mil" : "inch";
}

QString getUnitJudgeString(const void* handle, double mil, int decimals) {
    return QString::number(UnitService::milToDisplay(mil, unitOf(handle)), 'f',
                           std::max(0, decimals));
}

QString getUnitJudgeStringMetric(const void* handle, double engine) {
    return QString::number(UnitService::engineToDisplay(engine, unitOf(handle)), 'f', 3);
}

int getUnitJudgeData(const void* handle, double mil) {
    return static_cast<int>(std::trunc(UnitService::milToDisplay(mil, unitOf(handle))));
}

int getUnitJudgeData2(const void* handle, double mil) {
    return static_cast<int>(std::lround(UnitService::milToDisplay(mil, unitOf(handle))));
}

double getUnitJudgeDouble(const void* handle, double mil) {
    return UnitService::milToDisplay(mil, unitOf(handle));
}

double getUnitData(const void* handle, double old_display) {
    const UnitService& units = UnitService::instance();
    return UnitService::convertDisplay(old_display, units.previousUnit(handle), units.unit(handle));
}

double getUnitAPIData(const void* handle, int kind, double display) {
    const int unit = unitOf(handle);
    if (kind == 1)
        return UnitService::displayToEngine(display, unit);
    if (kind == 2)
        return UnitService::displayToEngine(UnitService::displayToEngine(display, unit), unit);
    return display;
}

double getUnitMilData(const void* handle, int kind, double display) {
    const int unit = unitOf(handle);
    if (kind == 1)
        return UnitService::displayToMil(display, unit);
    if (kind == 2)
        return UnitService::displayToMil(UnitService::displayToMil(display, unit), unit);
    return display;
}

double getUnitPointData(const void* handle, double display) {
    return UnitService::displayToEngine(display, unitOf(handle));
}

bool isValueLegal(double value, double min_mil, double max_mil, const void* handle) {
    return withinMil(UnitService::displayToMil(value, unitOf(handle)), min_mil, max_mil);
}

bool isNumValueLegal(const QString& text, double min_mil, double max_mil, const void* handle) {
    bool ok = false;
    const double value = text.trimmed().toDouble(&ok);
    return ok && std::isfinite(value) && isValueLegal(value, min_mil, max_mil, handle);
}

// A symbol name is legal when it holds at least one number and every number in it lies
// within the limits.
bool isSymbolValueLegal(const QString& symbol, double min_mil, double max_mil, const void* handle) {
    static const QRegularExpression number(QStringLiteral("[0-9]+(?:\\.[0-9]+)?|\\.[0-9]+"));
    bool any = false;
    auto it = number.globalMatch(symbol);
    while (it.hasNext()) {
        any = true;
        if (!isValueLegal(it.next().captured().toDouble(), min_mil, max_mil, handle))
            return false;
    }
    return any;
}

void setSymbolUIData(const void* handle, QString& symbol) {
    symbol = UnitService::convertSymbol(symbol, UnitService::kImperial, unitOf(handle));
}

void setSymbolAPIData(const void* handle, QString& symbol) {
    symbol = UnitService::convertSymbol(symbol, unitOf(handle), UnitService::kImperial);
}

void setSymbolDataByUnit(const void* handle, int unit, QString& symbol) {
    if (!UnitService::isValidUnit(unit)) {
        LOG(ERROR) << "unknown unit code " << unit << ", symbol " << symbol.toStdString()
                   << " left unchanged";
        return;
    }
    symbol = UnitService::convertSymbol(symbol, unitOf(handle), unit);
}

void setSymbolDataByMilUnit(const void* handle, QString& symbol) {
    symbol = UnitService::convertSymbol(symbol, UnitService::kImperial, unitOf(handle));
}

// ---- selection and view state ---------------------------------------------------------------

int getSelectedPara(const void* handle) {
    ViewState& state = viewState();
    std::lock_guard<std::mutex> guard(state.lock);
    auto it = state.selected_para.find(handle);
    return it == state.selected_para.end() ? API::FT_All : it->second;
}

void setSelectedPara(const void* handle, int feature_mask) {
    ViewState& state = viewState();
    std::lock_guard<std::mutex> guard(state.lock);
    state.selected_para[handle] = feature_mask & API::FT_All;
}

bool getShiftEnpress(const void*) {
    {
        ViewState& state = viewState();
        std::lock_guard<std::mutex> guard(state.lock);
        if (state.shift_for_test >= 0)
            return state.shift_for_test != 0;
    }
    if (QGuiApplication::instance() == nullptr)
        return false;
    return QGuiApplication::keyboardModifiers().testFlag(Qt::ShiftModifier);
}

// In mil, like every other default of the dialogs.
double getContourAccuracy() {
    ViewState& state = viewState();
    std::lock_guard<std::mutex> guard(state.lock);
    return state.contour_accuracy_mil;
}

// ---- ranges ---------------------------------------------------------------------------------

bool getRanges(const std::string& key, std::vector<Analysis_Ranges_Record>& records) {
    return wcref::RangeStore::instance().records(key, records);
}

std::vector<Analysis_Ranges_Record> getRanges(const std::string& key) {
    std::vector<Analysis_Ranges_Record> records;
    getRanges(key, records);
    return records;
}

int getRangesEnum(const std::string& key, const std::string& name) {
    return wcref::RangeStore::instance().itemOfName(key, name);
}

int getRangesEnum(const std::string& key, int row) {
    return wcref::RangeStore::instance().itemOfRow(key, row);
}

std::string getRangesName(const std::string& key, int item) {
    return wcref::RangeStore::instance().nameOfItem(key, item);
}

bool changeRangesValue(const std::string& key, const std::string& name, const std::string& level,
                       double value) {
    return wcref::RangeStore::instance().change(key, name, level, value);
}

bool changeRangesValues(const std::string& key, const std::vector<Ranges_Level_Change>& changes) {
    return wcref::RangeStore::instance().changeMany(key, changes);
}

double getMeasureValue(const API::check_info& hit) {
    return hit.value;
}

// ---- utilities ------------------------------------------------------------------------------

// Hours are not wrapped at a day; negative durations show as zero.
QString formatTime(int milliseconds) {
    const qint64 ms = std::max(0, milliseconds);
    return QStringLiteral("%1:%2:%3.%4")
        .arg(ms / 3600000)
        .arg(ms / 60000 % 60, 2, 10, QLatin1Char('0'))
        .arg(ms / 1000 % 60, 2, 10, QLatin1Char('0'))
        .arg(ms % 1000, 3, 10, QLatin1Char('0'));
}

// Writes UTF-8 text atomically; the folder must exist.
bool saveTextByIODevice(const QString& path, const QString& text) {
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Text)) {
        LOG(ERROR) << "cannot write " << path.toStdString() << ": "
                   << file.errorString().toStdString();
        return false;
    }
    const QByteArray bytes = text.toUtf8();
    // A full disk shows only when the buffer is flushed; commit() alone would still replace
    // the file.
    if (file.write(bytes) != bytes.size() || !file.flush() || !file.commit()) {
        LOG(ERROR) << "cannot write " << path.toStdString() << ": "
                   << file.errorString().toStdString();
        return false;
    }
    return true;
}

bool checkDir(const QString& path) {
    if (path.isEmpty())
        return false;
    if (QDir().mkpath(path))
        return true;
    LOG(ERROR) << "cannot create folder " << path.toStdString();
    return false;
}

// False (and no names) for a key that would leave "./ERFconfig/" or a folder that does not
// exist yet.
bool getERFList(const QString& key, QStringList& names) {
    names.clear();
    if (key.isEmpty() || key.contains(QLatin1Char('/')) || key.contains(QLatin1Char('\\')) ||
        key.contains(QLatin1Char(':')) || key == QLatin1String("..") || key == QLatin1String(".")) {
        LOG(ERROR) << "refused parameter set folder \"" << key.toStdString() << "\"";
        return false;
    }
    const QDir dir(QDir::currentPath() + QStringLiteral("/ERFconfig/") + key);
    if (!dir.exists())
        return false;
    const QString suffix = QStringLiteral(".json");
    for (const QString& file : dir.entryList(QDir::Files)) {
        if (file.endsWith(suffix) && file.size() > suffix.size())
            names.append(file.left(file.size() - suffix.size()));
    }
    names.sort();
    return true;
}

QStringList getERFList(const QString& key) {
    QStringList names;
    getERFList(key, names);
    return names;
}

std::string getServerIP() {
    ViewState& state = viewState();
    std::lock_guard<std::mutex> guard(state.lock);
    return state.server_ip;
}

int getServerPort() {
    ViewState& state = viewState();
    std::lock_guard<std::mutex> guard(state.lock);
    return state.server_port;
}

int getTimeout() {
    ViewState& state = viewState();
    std::lock_guard<std::mutex> guard(state.lock);
    return state.timeout_ms;
}

}  // namespace UIAPI
}  // namespace Korvo

namespace wcref {

void resetUnits() {
    UnitService::instance().reset();
    ViewState& state = viewState();
    std::lock_guard<std::mutex> guard(state.lock);
    state.selected_para.clear();
}

void setShiftPressedForTest(int state) {
    ViewState& view = viewState();
    std::lock_guard<std::mutex> guard(view.lock);
    view.shift_for_test = state < 0 ? -1 : (state != 0 ? 1 : 0);
}

void setContourAccuracy(double mil) {
    ViewState& state = viewState();
    std::lock_guard<std::mutex> guard(state.lock);
    state.contour_accuracy_mil = mil;
}

void setServerIP(const std::string& ip) {
    ViewState& state = viewState();
    std::lock_guard<std::mutex> guard(state.lock);
    state.server_ip = ip;
}

void setServerPort(int port) {
    ViewState& state = viewState();
    std::lock_guard<std::mutex> guard(state.lock);
    state.server_port = port;
}

void setTimeout(int milliseconds) {
    ViewState& state = viewState();
    std::lock_guard<std::mutex> guard(state.lock);
    state.timeout_ms = milliseconds;
}

}  // namespace wcref
