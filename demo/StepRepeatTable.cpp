#include "StepRepeatTable.h"

#include <QHeaderView>

#include "Korvo_API.h"
#include "Korvo_UIAPI.h"

StepRepeatTable::StepRepeatTable(const void* handle, QWidget* parent)
    : QTableWidget(parent), handle_(handle) {
    setColumnCount(9);
    setHorizontalHeaderLabels({tr("step"), tr("x"), tr("y"), tr("dx"), tr("dy"), tr("nx"), tr("ny"),
                               tr("angle"), tr("mirror")});
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setSelectionMode(QAbstractItemView::NoSelection);
    verticalHeader()->setVisible(false);
    horizontalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
}

void StepRepeatTable::showStep(const std::string& job, const std::string& step) {
    job_ = job;
    step_ = step;
    refresh();
}

void StepRepeatTable::refresh() {
    std::vector<Korvo::API::step_repeat_op> rows;
    Korvo::API::get_step_repeat(job_, step_, rows);
    setRowCount(static_cast<int>(rows.size()));
    const auto length = [this](int nm) {
        return QString::number(Korvo::UIAPI::getUnitJudgeDouble(handle_, nm / 25400.0), 'g', 8);
    };
    for (int r = 0; r < static_cast<int>(rows.size()); ++r) {
        const Korvo::API::step_repeat_op& row = rows[r];
        const QStringList cells{QString::fromStdString(row.step_name),
                                length(row.x),
                                length(row.y),
                                length(row.dx),
                                length(row.dy),
                                QString::number(row.nx),
                                QString::number(row.ny),
                                QString::number(row.angle),
                                row.mirror ? tr("yes") : tr("no")};
        for (int c = 0; c < cells.size(); ++c) {
            auto* item = new QTableWidgetItem(cells[c]);
            if (!row.selection.empty()) {
                item->setBackground(QColor(255, 200, 150));
            }
            setItem(r, c, item);
        }
    }
    const QString unit = QString::fromStdString(Korvo::UIAPI::getUnitStringType(handle_, 1));
    setToolTip(tr("Lengths in %1; rows with a selected instance are marked").arg(unit));
}
