#include "HitTableView.h"

#include <QHeaderView>
#include <QSignalBlocker>

namespace wc {

HitTableView::HitTableView(QWidget* parent) : QTableView(parent), model_(new HitTableModel(this)) {
    setModel(model_);
    setSelectionBehavior(QAbstractItemView::SelectRows);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    verticalHeader()->hide();
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    verticalHeader()->setDefaultSectionSize(20);
    horizontalHeader()->setStretchLastSection(true);
    horizontalHeader()->setSortIndicator(HitTableModel::IndexColumn, Qt::AscendingOrder);
    setSortingEnabled(true);
    setMinimumHeight(160);
    setColumnWidth(HitTableModel::IndexColumn, 90);
    setColumnWidth(HitTableModel::ValueColumn, 130);
    // Sorting moves the current row but not the hit: the viewer compares the position with its
    // own before showing anything.
    connect(selectionModel(), &QItemSelectionModel::currentRowChanged, this,
            [this](const QModelIndex& current) {
                if (!following_ && current.isValid()) {
                    emit positionPicked(model_->positionOfRow(current.row()));
                }
            });
}

void HitTableView::setHits(const HitSequence* hits, const std::vector<std::uint32_t>* admitted,
                           QStringList layer_names, double display_per_engine, int decimals,
                           const QString& unit) {
    const QSignalBlocker blocker(selectionModel());
    model_->setHits(hits, admitted, std::move(layer_names), display_per_engine, decimals, unit);
}

void HitTableView::showPosition(std::size_t position) {
    const int row = model_->rowOfPosition(position);
    if (row < 0) {
        return;
    }
    following_ = true;
    selectRow(row);
    scrollTo(model_->index(row, 0));
    following_ = false;
}

}  // namespace wc
