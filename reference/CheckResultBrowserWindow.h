#pragma once
// The reference result browser: the stored checks of getCheckResultMaster() in a table, one row
// each (id, kind, job, step, time, description). "Load" hands the chosen check's id, "Load
// result" its key "tq<id>" (the result without its record), a double click its row.

#include <QWidget>

class QTableWidget;
class QPushButton;

namespace wcref {

class CheckResultBrowserWindow : public QWidget {
    Q_OBJECT
public:
    explicit CheckResultBrowserWindow(QWidget* parent);

    QTableWidget* table() const { return table_; }

public slots:
    void refresh();
    void loadChosen();
    void loadChosenResult();

signals:
    void send_check_id_text(QString& id);
    void send_tq_check_id_text(QString& key);
    void send_load_index(int index);

protected:
    void showEvent(QShowEvent* event) override;

private:
    int chosenRow() const;

    QTableWidget* table_ = nullptr;
    QPushButton* load_ = nullptr;
    QPushButton* load_result_ = nullptr;
};

}  // namespace wcref
