#pragma once
// Control of the reference host services for tests, benchmarks and the demo. A real host sets
// these through its own configuration; nothing in Widget_Common calls them.

#include <QString>
#include <string>
#include <vector>

namespace wcref {

// ---- units ----------------------------------------------------------------------------------
// Unit of every handle that has none of its own: 0 imperial (mil), 1 metric (mm).
void setDefaultUnit(int unit);
int defaultUnit();
// Forgets every handle's unit, previous unit and selection mask; the default becomes imperial.
void resetUnits();

// ---- paths and ranges -----------------------------------------------------------------------
// What Common::getPath() returns from now on; an empty text restores the application directory
// (or the current directory when there is no application object).
void setApplicationDir(const QString& dir);
// Reads "<application dir>/config/ranges.json" again at the next range call.
void reloadRanges();

// ---- operation recorder ---------------------------------------------------------------------
void setSaveFlag(bool on);
// Every *_db_save call since the last clear, as text, e.g. "get_graphics_db_save(job)".
std::vector<std::string> recordedSaves();
void clearRecordedSaves();

// ---- view state -----------------------------------------------------------------------------
// 1 pressed, 0 released, -1 read the real keyboard (the default).
void setShiftPressedForTest(int state);
// Contour accuracy in mil (default 0.25).
void setContourAccuracy(double mil);

// ---- server settings ------------------------------------------------------------------------
void setServerIP(const std::string& ip);
void setServerPort(int port);
void setTimeout(int milliseconds);

}  // namespace wcref
