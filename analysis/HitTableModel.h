#pragma once
// The hit table under the viewer's navigation: one row per admitted hit of the current category
// (index, value in the display unit, layer, the nets of its copper), read straight from the
// result; no item per row.
// Sorting keeps a permutation, so the rows map back to navigation positions.

#include <QAbstractTableModel>
#include <QStringList>
#include <cstdint>
#include <vector>

#include "ResultsModel.h"
#include "frame/WidgetCommonExport.h"

namespace wc {

class WIDGET_COMMON_EXPORT HitTableModel : public QAbstractTableModel {
    Q_OBJECT
public:
    enum Column {
        IndexColumn = 0,
        ValueColumn = 1,
        LayerColumn = 2,
        NetsColumn = 3,
        ColumnCount = 4
    };

    explicit HitTableModel(QObject* parent = nullptr);

    // `admitted` lists the sequence positions that pass (navigation position -> sequence
    // position); null admits every hit. Both must outlive the next call.
    void setHits(const HitSequence* hits, const std::vector<std::uint32_t>* admitted,
                 QStringList layer_names, double display_per_engine, int decimals,
                 const QString& unit);

    // Navigation position of a table row, and the row of a navigation position (-1 when none).
    std::size_t positionOfRow(int row) const;
    int rowOfPosition(std::size_t position) const;
    // The hit of a navigation position.
    HitRef hitAt(std::size_t position) const;

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    int columnCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation,
                        int role = Qt::DisplayRole) const override;
    void sort(int column, Qt::SortOrder order = Qt::AscendingOrder) override;

private:
    void applySort();

    const HitSequence* hits_ = nullptr;
    const std::vector<std::uint32_t>* admitted_ = nullptr;
    QStringList layer_names_;
    double display_per_engine_ = 1.0;
    int decimals_ = 3;
    QString unit_;
    std::size_t count_ = 0;
    int sort_column_ = IndexColumn;
    Qt::SortOrder sort_order_ = Qt::AscendingOrder;
    std::vector<std::uint32_t> order_;    // row -> navigation position; empty when natural
    std::vector<std::uint32_t> inverse_;  // navigation position -> row; empty when natural
};

}  // namespace wc
