#pragma once
// A dialog's numeric fields declared as data: one row per field (label, engine name, default in
// mil, limits, reset text, record member, enabled). Building, the Return commit, the whole-form
// check, unit and language changes and record filling all follow from the rows.
//
//     const std::vector<wc::FieldRow<my_params>> rows = {
//         {" Spacing:", "pp_spacing", "Spacing", 10.0, 0.0, 1000.0, "10", &my_params::spacing},
//     };
//     wc::FieldTable<my_params> table(this, handle, rows);
//     table.addToGrid(grid, 0);
//     ...
//     my_params record;
//     table.fill(record);

#include <QList>
#include <QString>
#include <QStringList>
#include <cstdint>
#include <functional>
#include <vector>

#include "FieldCommit.h"
#include "frame/WidgetCommonExport.h"

#include "frame/EngineInt.h"

class QGridLayout;
class QObject;
class QLabel;
class QLineEdit;
class QWidget;

namespace Korvo {
namespace UIAPI {
class ZeLineEdit;
}
}  // namespace Korvo

namespace wc {

// Where a field's engine value goes in the record: a double member as it is, an int32 member
// truncated (and clamped to its range).
template <class Record>
class RecordMember {
public:
    RecordMember() = default;
    RecordMember(double Record::*member)
        : store_([member](Record& record, double value) { record.*member = value; }) {}
    RecordMember(int32_t Record::*member)
        : store_([member](Record& record, double value) { record.*member = toEngineInt(value); }) {}

    // Rows without a member (shown and checked, never sent) store nothing.
    bool isSet() const { return static_cast<bool>(store_); }
    void store(Record& record, double engine_value) const {
        if (store_) {
            store_(record, engine_value);
        }
    }

private:
    std::function<void(Record&, double)> store_;
};

// What the widgets need of a row; FieldRow adds the record member.
struct FieldSpec {
    const char* label = "";        // untranslated, blanks kept
    const char* engine_name = "";  // quoted in range messages and in parameter strings
    const char* key = "";          // object names and JSON keys are built from it
    double default_mil = 0.0;
    double lower_mil = 0.0;
    double upper_mil = 0.0;
    // Put back as it stands after a refused commit. A row without one has no commit on Return:
    // its dialog checks it only when it runs.
    const char* reset_text = "";
    bool enabled = true;
};

template <class Record>
struct FieldRow : FieldSpec {
    FieldRow(const char* label, const char* engine_name, const char* key, double default_mil,
             double lower_mil, double upper_mil, const char* reset_text,
             RecordMember<Record> member = RecordMember<Record>(), bool enabled = true)
        : FieldSpec{label,     engine_name, key,        default_mil,
                    lower_mil, upper_mil,   reset_text, enabled},
          member(std::move(member)) {}
    RecordMember<Record> member;
};

// How the fields are made: ZeLineEdits that convert their own text after a unit change (the
// usual form), or plain line edits with the float pattern whose texts the table re-expresses
// through the unit service (the older form, kept by the first dialogs).
enum class FieldForm { Ze, Plain };

// The widgets of the rows: a label, a numeric field showing the default in the display unit
// with two decimals, and a unit label. Object names: "label_<key>", "lineEdit_<key>",
// "label_<key>Unit" with blanks in the key dropped.
class WIDGET_COMMON_EXPORT FieldTableWidgets {
public:
    FieldTableWidgets(QWidget* dialog, const void* handle, const std::vector<FieldSpec>& specs,
                      FieldForm form = FieldForm::Ze);

    int size() const { return static_cast<int>(specs_.size()); }
    const FieldSpec& spec(int row) const { return specs_[static_cast<size_t>(row)]; }
    // Null in the plain form.
    Korvo::UIAPI::ZeLineEdit* edit(int row) const;
    QLineEdit* lineEdit(int row) const;
    QLabel* label(int row) const { return labels_[row]; }
    QLabel* unitLabel(int row) const { return unit_labels_[row]; }
    QList<QObject*> editObjects() const;

    // Label, field and unit label on `first_row` onwards, starting at `column`.
    void addToGrid(QGridLayout* grid, int first_row, int column = 0) const;

    // Enter_<Field>_Text of one row; connected to each field's returnPressed().
    bool commit(int row);
    // judge_Apply over every enabled row.
    bool judge();
    // The mouse-leave commit over every enabled row.
    int commitPendingOnLeave(const QPoint& pos);
    // Row of the first enabled empty field, or -1.
    int firstEmpty() const;
    // Whether every non-empty enabled field holds text its validator accepts.
    bool allAcceptable() const;
    // Display text to engine units (getUnitAPIData kind 1).
    double engineValue(int row) const;

    QStringList texts() const;
    void setTexts(const QStringList& texts);

    void changeUnit();
    void changeLanguage();

private:
    QWidget* dialog_;
    const void* handle_;
    FieldForm form_;
    std::vector<FieldSpec> specs_;
    std::vector<NumericField> fields_;
    QList<QLabel*> labels_;
    QList<QLabel*> unit_labels_;
};

template <class Record>
class FieldTable : public FieldTableWidgets {
public:
    FieldTable(QWidget* dialog, const void* handle, const std::vector<FieldRow<Record>>& rows,
               FieldForm form = FieldForm::Ze)
        : FieldTableWidgets(dialog, handle, specsOf(rows), form), rows_(rows) {}

    // Every enabled row with a member gets its field's engine value; empty fields are skipped.
    void fill(Record& record) const {
        const QStringList shown = texts();
        for (int row = 0; row < size(); ++row) {
            if (spec(row).enabled && !shown.at(row).isEmpty()) {
                rows_[static_cast<size_t>(row)].member.store(record, engineValue(row));
            }
        }
    }

private:
    static std::vector<FieldSpec> specsOf(const std::vector<FieldRow<Record>>& rows) {
        return std::vector<FieldSpec>(rows.begin(), rows.end());
    }

    std::vector<FieldRow<Record>> rows_;
};

}  // namespace wc
