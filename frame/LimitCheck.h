#pragma once
// The "0 up to a limit" checks the optimisation dialogs make before a run. Limits are written
// in mil and compared in the display unit without truncation: a 20 mil limit is 20 in mil and
// 0.508 in mm. (Truncating it to a whole display unit, as the unit service's judge data does,
// would make it 0 mm and refuse every positive length in mm.)

#include <QString>

namespace wc {

// The limit in the display unit of `handle`.
double displayLimit(const void* handle, double limit_mil);
// The limit as a message shows it: "20" in mil, "0.508" in mm (at most three decimals).
QString limitText(const void* handle, double limit_mil);
// Whether `text` is a number from 0 up to the limit, both included.
bool withinZeroTo(const void* handle, const QString& text, double limit_mil);

}  // namespace wc
