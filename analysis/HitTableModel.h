#pragma once
// The hit table under the viewer's navigation, read straight from the result; no item per row.
// Ungrouped, its rows are the hits the navigation steps through (index, value, required value and
// difference in the display unit, layer, location, nets, state). Grouped by item, layer or net,
// it lists the hits of every category of the chosen layers under a heading row per group, which
// a click folds or unfolds. Sorting orders the rows (within each group) and keeps the way back
// to navigation positions.

#include <QAbstractTableModel>
#include <QStringList>
#include <cstdint>
#include <optional>
#include <set>
#include <vector>

#include "HitBrowser.h"
#include "HitColumns.h"
#include "HitRows.h"
#include "frame/WidgetCommonExport.h"

namespace wc {

class WIDGET_COMMON_EXPORT HitTableModel : public QAbstractTableModel {
    Q_OBJECT
public:
    enum Role {
        VisitedRole = Qt::UserRole + 1,  // true once the hit was shown
        GroupRole,                       // true on a group's heading row
    };

    explicit HitTableModel(QObject* parent = nullptr);

    // The hits the navigation of `browser` steps through; `browser` must outlive the rows.
    void setNavigable(const HitBrowser* browser, HitColumns columns, const QString& unit);
    // `hits` (HitBrowser::listAll) under a heading per group of `key`; folded groups stay folded
    // while the key stays.
    void setGrouped(const HitBrowser* browser, std::vector<TableHit> hits, GroupKey key,
                    HitColumns columns, const QString& unit, const QString& no_net);
    // Per hit number, whether it was shown (null: none was), and the state column's tool tip.
    void setMarks(const std::vector<std::uint8_t>* visited,
                  std::function<QString(std::size_t number)> state_tip);

    // The headers and state texts again, in the current language.
    void retranslate();

    bool isGroupRow(int row) const;
    std::vector<int> headingRows() const;
    void toggleGroup(int row);
    // The hit of a row; nothing for a heading.
    std::optional<TableHit> hitOfRow(int row) const;
    // The row of a navigation position of the current category (-1 when not shown); reveal
    // unfolds its group first.
    int rowOfPosition(std::size_t position) const;
    void reveal(std::size_t position);
    // The listed hit nearest to `at` (engine units) within `radius`, folded groups included.
    std::optional<TableHit> nearest(const Korvo::API::point& at, double radius) const;

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    int columnCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation,
                        int role = Qt::DisplayRole) const override;
    void sort(int column, Qt::SortOrder order = Qt::AscendingOrder) override;

private:
    bool natural() const { return grouping_ == GroupKey::None && rows_.empty(); }
    std::size_t listedCount() const;
    TableHit listedAt(std::size_t i) const;
    HitRef refOf(const TableHit& hit) const;
    void materialise();
    void setFolded(std::size_t group, bool folded);
    void arrange();  // sorts the rows, then lays out the groups and the way back
    void sortRange(std::size_t begin, std::size_t end);
    void layOut();
    QVariant hitData(const TableHit& hit, int column, int role) const;
    QVariant groupData(std::size_t group, int column, int role) const;

    const HitBrowser* browser_ = nullptr;
    HitColumns columns_;
    QString unit_;
    const std::vector<std::uint8_t>* visited_ = nullptr;
    std::function<QString(std::size_t)> state_tip_;
    GroupKey grouping_ = GroupKey::None;
    std::size_t navigable_ = 0;   // hits of the navigation (ungrouped)
    std::vector<TableHit> rows_;  // the listed hits when grouped or sorted, in listed order
    std::vector<HitGroup> groups_;
    std::vector<char> folded_;
    std::set<QString> folded_labels_;
    std::vector<std::int32_t> flat_;       // grouped: row -> hit (>= 0) or heading (-1 - group)
    std::vector<std::int32_t> row_of_;     // navigation position -> row; empty when natural
    std::vector<std::int32_t> listed_of_;  // navigation position -> index in rows_
    int sort_column_ = IndexColumn;
    Qt::SortOrder sort_order_ = Qt::AscendingOrder;
};

}  // namespace wc
