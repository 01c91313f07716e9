#pragma once
// The severity ranges of one range key, one row per check item: the red, yellow and green level
// of each item, shown in the display unit. Every change goes at once into the UI service's range
// store, so the next run and the results viewer use it.

#include <QList>
#include <QMap>
#include <QPointer>
#include <QString>
#include <QWidget>
#include <string>
#include <vector>

#include "Korvo_UIAPI.h"
#include "frame/WidgetCommonExport.h"

class QGridLayout;
class QPushButton;
class QScrollArea;
namespace Korvo::UIAPI {
class ZeLineEdit;
}

class WIDGET_COMMON_EXPORT Widget_Ranges : public QWidget {
    Q_OBJECT
public:
    using Record = Korvo::UIAPI::Analysis_Ranges_Record;

    // `handle` is the host handle for unit calls; the window is a child window of `parent`.
    Widget_Ranges(std::vector<Record>& records, QWidget* handle, QWidget* parent);
    explicit Widget_Ranges(QWidget* parent);
    // Reads the records of `key` from the range store; `owner` names the dialog in the title.
    Widget_Ranges(std::string key, std::string owner, QWidget* handle, QWidget* parent);
    Widget_Ranges(QString key, std::vector<Record>& records, QWidget* handle, QWidget* parent);

    // What a dialog's "Ranges..." does: creates the editor of `key` once (kept in `editor`),
    // follows the dialog's unit_changed() signal, and shows it.
    template <typename Dialog>
    static void openFor(QPointer<Widget_Ranges>& editor, Dialog* dialog, const void* handle,
                        const QString& key, const char* owner) {
        if (editor.isNull()) {
            editor = create(handle, key, owner);
            connect(dialog, &Dialog::unit_changed, editor.data(), &Widget_Ranges::change_units);
        }
        editor->show();
        editor->raise();
    }

    // Replaces the records and shows their values.
    void updateRangeData(std::vector<Record>& records);

    const QString& rangesKey() const { return key_; }
    const std::vector<Record>& records() const { return records_; }

public slots:
    void change_units();
    void change_language();
    void on_redlvl_edit_Finished();
    void on_yellowlvl_edit_Finished();
    void on_greenlvl_edit_Finished();
    void on_m_pClosePB_clicked();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    using LevelSlot = void (Widget_Ranges::*)();

    static Widget_Ranges* create(const void* handle, const QString& key, const char* owner);
    void InitInterface();
    void InitDisnableditemmap();
    void GetListInfo();
    void clearRows();
    void commitLevel(QList<Korvo::UIAPI::ZeLineEdit*>& fields, double Record::*level,
                     const char* level_name);
    void changeLineEditValueByUnit(QList<Korvo::UIAPI::ZeLineEdit*>& fields);
    void setLineEditValue(QList<Korvo::UIAPI::ZeLineEdit*>& fields);
    double engineValue(const QString& text) const;

    const void* handle_;
    QString key_;
    QString owner_;  // the dialog named in the title
    std::vector<Record> records_;
    QMap<QString, QList<int>> disabled_items_;

    QScrollArea* m_pScrollArea = nullptr;
    QWidget* m_pRowsWidget = nullptr;
    QGridLayout* m_pGrid = nullptr;
    QPushButton* m_pClosePB = nullptr;
    QList<QWidget*> row_labels_;
    QList<Korvo::UIAPI::ZeLineEdit*> red_edits_;
    QList<Korvo::UIAPI::ZeLineEdit*> yellow_edits_;
    QList<Korvo::UIAPI::ZeLineEdit*> green_edits_;
};
