#pragma once
// The three input patterns every dialog shares. Dialogs build their validators here and never
// re-type the patterns.

#include <QString>

class QObject;
class QRegExpValidator;

namespace wc {

// Numbers: optional minus, then an integer of up to 15 digits without a leading zero, or "0."
// with up to 5 decimals, or an integer part with 1 to 5 decimals.
QString floatPattern();
// Names of layers, steps and symbols: lower-case letters, digits and _ + . ; - (at most 64).
QString namePattern();
// Any text without a CJK ideograph of the common range U+4E00..U+9FA5.
QString noCjkPattern();

// Case-sensitive validators parented to `parent`.
QRegExpValidator* makeFloatValidator(QObject* parent);
QRegExpValidator* makeNameValidator(QObject* parent);
QRegExpValidator* makeNoCjkValidator(QObject* parent);

}  // namespace wc
