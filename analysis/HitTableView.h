#pragma once
// The viewer's hit table: one row per listed hit (HitTableModel), sortable by any column, with a
// heading row per group that a click folds or unfolds. It follows the navigation, and a hit row
// the user picks, in whatever order the rows stand, is announced by its item and its position
// among the listed hits of that item. Several rows may be selected, for actions on all of them.

#include <QTableView>
#include <cstddef>

#include "HitTableModel.h"
#include "frame/WidgetCommonExport.h"

namespace wc {

class WIDGET_COMMON_EXPORT HitTableView : public QTableView {
    Q_OBJECT
public:
    explicit HitTableView(QWidget* parent);

    HitTableModel* hitModel() const { return model_; }
    // New rows (as HitTableModel::setNavigable and setGrouped); the selection's reset is not
    // announced.
    void showNavigable(const HitBrowser* browser, HitColumns columns, const QString& unit);
    void showGrouped(const HitBrowser* browser, std::vector<TableHit> hits, GroupKey key,
                     HitColumns columns, const QString& unit, const QString& no_net);
    // Selects and shows the row of a navigation position, unfolding its group, without
    // announcing it.
    void showPosition(std::size_t position);
    // The hits of the selected rows, headings left out, in row order.
    std::vector<TableHit> selectedHits() const;

signals:
    void hitPicked(int item, std::size_t position);

private:
    void markHeadings();

    HitTableModel* model_;
    bool following_ = false;  // the selection follows the navigation
};

}  // namespace wc
