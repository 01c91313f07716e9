#include "HitTableView.h"

#include <QFontMetrics>
#include <QHeaderView>
#include <QSignalBlocker>
#include <algorithm>

namespace wc {

HitTableView::HitTableView(QWidget* parent) : QTableView(parent), model_(new HitTableModel(this)) {
    setModel(model_);
    setSelectionBehavior(QAbstractItemView::SelectRows);
    setSelectionMode(QAbstractItemView::ExtendedSelection);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setContextMenuPolicy(Qt::ActionsContextMenu);
    verticalHeader()->hide();
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    verticalHeader()->setDefaultSectionSize(20);
    horizontalHeader()->setStretchLastSection(true);
    horizontalHeader()->setSortIndicator(IndexColumn, Qt::AscendingOrder);
    setSortingEnabled(true);
    setMinimumHeight(160);
    // Wide enough for a header with its unit and a typical cell; the user may widen them.
    const QFontMetrics metrics(horizontalHeader()->font());
    const std::pair<int, const char*> widths[] = {{IndexColumn, "000000"},
                                                  {ValueColumn, "Value (mil)"},
                                                  {RequiredColumn, "Required (mil)"},
                                                  {DifferenceColumn, "Difference (mil)"},
                                                  {LayerColumn, "layer_00"},
                                                  {LocationColumn, "000.000, 000.000"},
                                                  {NetsColumn, "GND / VCC"}};
    for (const auto& [column, sample] : widths) {
        setColumnWidth(column, metrics.horizontalAdvance(QLatin1String(sample)) + 24);
    }
    // Sorting moves the current row but not the hit: the viewer compares the position with its
    // own before showing anything.
    connect(selectionModel(), &QItemSelectionModel::currentRowChanged, this,
            [this](const QModelIndex& current) {
                if (following_ || !current.isValid()) {
                    return;
                }
                if (const auto hit = model_->hitOfRow(current.row())) {
                    emit hitPicked(hit->item, hit->position);
                }
            });
    connect(this, &QTableView::clicked, this, [this](const QModelIndex& index) {
        if (model_->isGroupRow(index.row())) {
            model_->toggleGroup(index.row());
        }
    });
    connect(model_, &QAbstractItemModel::modelReset, this, &HitTableView::markHeadings);
    connect(model_, &QAbstractItemModel::layoutChanged, this, &HitTableView::markHeadings);
}

void HitTableView::showNavigable(const HitBrowser* browser, HitColumns columns,
                                 const QString& unit) {
    const QSignalBlocker blocker(selectionModel());
    model_->setNavigable(browser, std::move(columns), unit);
}

void HitTableView::showGrouped(const HitBrowser* browser, std::vector<TableHit> hits, GroupKey key,
                               HitColumns columns, const QString& unit, const QString& no_net) {
    const QSignalBlocker blocker(selectionModel());
    model_->setGrouped(browser, std::move(hits), key, std::move(columns), unit, no_net);
}

void HitTableView::showPosition(std::size_t position) {
    following_ = true;
    model_->reveal(position);
    const int row = model_->rowOfPosition(position);
    if (row >= 0) {
        selectRow(row);
        scrollTo(model_->index(row, 0));
    }
    following_ = false;
}

std::vector<TableHit> HitTableView::selectedHits() const {
    std::vector<int> rows;
    for (const QModelIndex& index : selectionModel()->selectedRows()) {
        rows.push_back(index.row());
    }
    std::sort(rows.begin(), rows.end());
    std::vector<TableHit> hits;
    for (int row : rows) {
        if (const auto hit = model_->hitOfRow(row)) {
            hits.push_back(*hit);
        }
    }
    return hits;
}

// A heading spans the row, so that its label is read whole.
void HitTableView::markHeadings() {
    clearSpans();
    for (int row : model_->headingRows()) {
        setSpan(row, 0, 1, HitColumnCount);
    }
}

}  // namespace wc
