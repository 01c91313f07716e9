#pragma once
// The reference result browser: the stored checks of getCheckResultMaster() in a table, one row
// each (id, kind, job, step, time, description). "Load" hands the chosen check's id, "Load
// result" its key "tq<id>" (the result without its record), a double click its row.

#include "CheckResultBrowser.h"

class QTableWidget;
class QPushButton;

namespace wcref {

class CheckResultBrowserWindow : public Quorin::DBS_API::CheckResultBrowser {
    Q_OBJECT
public:
    explicit CheckResultBrowserWindow(QWidget* parent);

    QTableWidget* table() const { return table_; }

public slots:
    void refresh();
    void loadChosen();
    void loadChosenResult();

protected:
    void showEvent(QShowEvent* event) override;

private:
    int chosenRow() const;

    QTableWidget* table_ = nullptr;
    QPushButton* load_ = nullptr;
    QPushButton* load_result_ = nullptr;
};

}  // namespace wcref
