#pragma once
// A range table of the solder mask optimisation ("SMD Compensate Range", "Gas Range"): a titled
// box with a two-column table ("Range", "Value") and "Add" / "Delete" buttons. Each cell is a
// numeric line edit over an item that mirrors its text, so that a parameter set saves the
// table's values with the form; loading a set writes the items, and restoreEditors() puts the
// editors back over them.

#include <QList>
#include <QObject>
#include <QString>

#include "dfm/SolderMaskOptChecks.h"
#include "frame/WidgetCommonExport.h"

class QGroupBox;
class QPushButton;
class QTableWidget;
class QWidget;

namespace Korvo::UIAPI {
class ZeLineEdit;
}

namespace wc {

class WIDGET_COMMON_EXPORT RangeTableBox : public QObject {
    Q_OBJECT
public:
    // Object names: "groupBox_<key>", "tableWidget_<key>", "lineEdit_<key>Cell",
    // "pushButton_Add<button_key>Row", "pushButton_Delete<button_key>Row".
    RangeTableBox(QWidget* dialog, const QString& key, const QString& button_key,
                  const char* title);

    QGroupBox* box() const { return box_; }
    QTableWidget* table() const { return table_; }
    QPushButton* addButton() const { return add_; }
    QPushButton* deleteButton() const { return remove_; }

    RangeRows rows() const;
    void setRows(const RangeRows& rows);
    // A new empty row, its first cell focused.
    void addRow();
    // Deletes the row being edited, else the current row, else the last one.
    void deleteRow();
    // Rebuilds the cell editors from the items after a parameter set was loaded.
    void restoreEditors();
    QList<Korvo::UIAPI::ZeLineEdit*> cells() const;

signals:
    // Rows were added, deleted or replaced, or a cell was edited.
    void changed();

private:
    void setItem(int row, int column, const QString& text);

    QWidget* dialog_;
    QGroupBox* box_ = nullptr;
    QTableWidget* table_ = nullptr;
    QPushButton* add_ = nullptr;
    QPushButton* remove_ = nullptr;
};

}  // namespace wc
