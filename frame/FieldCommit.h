#pragma once
// Commit and range checks of the plain numeric line edits: what Enter_<Field>_Text,
// judge_Apply and the mouse-leave commit of a dialog share.

#include <QPoint>
#include <QRect>
#include <QString>
#include <QVector>
#include <functional>

class QLineEdit;
class QWidget;

namespace wc {

// One numeric field of a dialog. Limits are written in mil; the reset text is put back as it
// stands, in whatever unit is shown.
struct NumericField {
    QLineEdit* edit = nullptr;
    QString engine_name;  // the engine's parameter name, quoted in messages
    double lower_mil = 0.0;
    double upper_mil = 0.0;
    QString reset_text;
    QString last_committed;  // text when the field was last committed
};

using NumericFields = QVector<NumericField*>;

// The three-line message of a value above its field's limit.
QString illegalFloatMessage(const QString& engine_name, const QString& text, int lower, int upper);
// The same with the limits as the optimisation dialogs write them (wc::limitText).
QString illegalFloatMessage(const QString& engine_name, const QString& text, const QString& lower,
                            const QString& upper);

// Enter_<Field>_Text: remembers the text as committed and tests it against the upper limit,
// truncated to an integer in the display unit. A value above it is reported on top of `dialog`
// and replaced by the field's reset text. True when the value was kept.
bool commitField(QWidget* dialog, const void* handle, NumericField& field);

// judge_Apply: "Illegal field value" for an empty field; a value outside its truncated limits
// fails silently.
bool judgeFields(QWidget* dialog, const void* handle, const NumericFields& fields);

// Whether the field holds a typed, non-empty text that was never committed.
bool hasPendingEdit(const NumericField& field);

// Whether the pointer counts as inside the first field. The test compares against the
// rectangle's width and height, not its right and bottom edges: kept on purpose.
bool insideAsTested(const QRect& rect, const QPoint& point);

// The mouse-leave commit: unless `pos` is inside `first_field` as tested above, calls `commit`
// with the position of every field that holds an uncommitted text. Returns how many it called.
int commitPendingOnLeave(const QPoint& pos, const QRect& first_field, const NumericFields& fields,
                         const std::function<void(int)>& commit);

}  // namespace wc
