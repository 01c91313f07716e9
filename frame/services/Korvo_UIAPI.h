#pragma once
// Shared user-interface services. The first argument of every unit or view call is the dialog's
// host handle (its parent or owning toolbar); the service keeps the display unit per handle.
//
// Units: code 0 is imperial (lengths shown in mil), 1 metric (lengths shown in mm). Engine
// lengths are nanometres. Defaults and limits are written in mil.

#include <QJsonObject>
#include <QList>
#include <QString>
#include <QStringList>
#include <map>
#include <string>
#include <vector>

#include "Korvo_Analysis_types.h"

class QObject;

namespace Korvo {
namespace UIAPI {

// One severity range of one check item; levels are engine values.
struct Analysis_Ranges_Record {
    std::string name;
    double RedLv = 0.0;
    double YellowLv = 0.0;
    double GreenLv = 0.0;
};

// How a check dialog runs: 1 runs the engine itself, layer by layer; any other value hands the
// whole check to the check-list service.
enum Check_Type : int {
    Check_Service = 0,
    Check_Engine = 1,
};

// ---- units ----------------------------------------------------------------------------------
int getUnit(const void* handle);
void setUnit(const void* handle, int unit);
// Flavour 1: "mil" or "mm" (for fields); flavour 0: "inch" or "mm".
std::string getUnitStringType(const void* handle, int flavour);
// A value written in mil, shown in the display unit with `decimals` decimals.
QString getUnitJudgeString(const void* handle, double mil, int decimals);
// An engine value shown in the display unit with three decimals.
QString getUnitJudgeStringMetric(const void* handle, double engine);
// A limit written in mil, in the display unit, truncated towards zero.
int getUnitJudgeData(const void* handle, double mil);
// The same, rounded to the nearest integer.
int getUnitJudgeData2(const void* handle, double mil);
// The same, not truncated.
double getUnitJudgeDouble(const void* handle, double mil);
// A display value typed in the previous display unit of `handle`, in the current one.
double getUnitData(const void* handle, double old_display);
// Display value to engine value: kind 1 lengths (nanometres), kind 2 areas (square
// nanometres); other kinds are unit-free and pass unchanged.
double getUnitAPIData(const void* handle, int kind, double display);
// Display value to mil: kind 1 lengths, kind 2 areas; other kinds pass unchanged.
double getUnitMilData(const void* handle, int kind, double display);
// A coordinate from the display unit to engine units.
double getUnitPointData(const void* handle, double display);
// `value` in display units against limits in mil, both ends included.
bool isValueLegal(double value, double min_mil, double max_mil, const void* handle);
bool isNumValueLegal(const QString& text, double min_mil, double max_mil, const void* handle);
bool isSymbolValueLegal(const QString& symbol, double min_mil, double max_mil, const void* handle);
// Numbers inside symbol names ("r10", "rect20x40"): engine names count in mil.
void setSymbolUIData(const void* handle, QString& symbol);                // engine -> display
void setSymbolAPIData(const void* handle, QString& symbol);               // display -> engine
void setSymbolDataByUnit(const void* handle, int unit, QString& symbol);  // display -> unit
void setSymbolDataByMilUnit(const void* handle, QString& symbol);         // mil -> display

// ---- selection and view state ---------------------------------------------------------------
int getSelectedPara(const void* handle);
void setSelectedPara(const void* handle, int feature_mask);
bool getShiftEnpress(const void* handle);
// Contour accuracy in mil, like the dialogs' other defaults.
double getContourAccuracy();

// ---- ranges ---------------------------------------------------------------------------------
bool getRanges(const std::string& key, std::vector<Analysis_Ranges_Record>& records);
std::vector<Analysis_Ranges_Record> getRanges(const std::string& key);
// The item enumeration value of a range name (or of a row position); -1 when unknown.
int getRangesEnum(const std::string& key, const std::string& name);
int getRangesEnum(const std::string& key, int row);
std::string getRangesName(const std::string& key, int item);
// `level` is "RedLv", "YellowLv" or "GreenLv"; false for an unknown key, name or level, and
// when the change could not be kept on disk (it then holds until the program ends).
bool changeRangesValue(const std::string& key, const std::string& name, const std::string& level,
                       double value);
// One level change of a batch.
struct Ranges_Level_Change {
    std::string name;
    std::string level;  // "RedLv", "YellowLv" or "GreenLv"
    double value = 0.0;
};
// Applies every change and makes them persistent together (one write, however many changes);
// false when any change was refused (the others are kept) or they could not be kept on disk.
bool changeRangesValues(const std::string& key, const std::vector<Ranges_Level_Change>& changes);

double getMeasureValue(const API::check_info& hit);

// ---- widget values as JSON ------------------------------------------------------------------
// Each widget is stored under its object name (or "#<position>" when it has none): line edits
// and labels their text, check boxes and radio buttons their state, combo boxes their index,
// button groups the checked id, spin boxes their value, tables their cell texts.
void readListToJson(const QList<QObject*>& widgets, QJsonObject& object);
void writeJsonToList(const QJsonObject& object, QList<QObject*>& widgets);

// ---- utilities ------------------------------------------------------------------------------
// Milliseconds as "h:mm:ss.zzz".
QString formatTime(int milliseconds);
bool saveTextByIODevice(const QString& path, const QString& text);
// Creates the folder (and its parents) when missing.
bool checkDir(const QString& path);
// Names of the parameter sets saved under "./ERFconfig/<key>/", without ".json", sorted.
bool getERFList(const QString& key, QStringList& names);
QStringList getERFList(const QString& key);
// Layer names of `job` named by `expression`: names separated by ";", or a filter such as
// ".type=signal|mixed&side=top|bottom&context=board". Empty for a malformed expression.
std::vector<std::string> getAnalyzeAndDFMLayers(const std::string& job,
                                                const std::string& expression);
// The same; the names of a name list that the job lacks are put in `missing` (emptied first),
// so that a dialog can report them.
std::vector<std::string> getAnalyzeAndDFMLayers(const std::string& job,
                                                const std::string& expression,
                                                std::vector<std::string>& missing);
std::string getServerIP();
int getServerPort();
int getTimeout();

}  // namespace UIAPI
}  // namespace Korvo
