#pragma once
// The "0 up to a limit" checks the optimisation dialogs make before a run. Limits are written
// in mil and judged as the unit service's judge data gives them: converted to the display unit
// and truncated to a whole number. A 20 mil limit is 20 in mil and 0 in mm, a 100 mil limit 2
// in mm: in mm such a field admits only what the truncated limit admits, and the message quotes
// that same whole number.

#include <QString>

namespace wc {

// The limit in the display unit of `handle`, truncated (Korvo::UIAPI::getUnitJudgeData).
int displayLimit(const void* handle, double limit_mil);
// The limit as a message shows it, in base 10.
QString limitText(const void* handle, double limit_mil);
// Whether `text` is a number from 0 up to the limit, both included.
bool withinZeroTo(const void* handle, const QString& text, double limit_mil);

}  // namespace wc
