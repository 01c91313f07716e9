#pragma once
// The viewer's hit table: one row per hit of the current category that passes (index, value,
// layer, nets), sortable by any column. It follows the navigation, and a row the user picks, in
// whatever order the rows stand, is announced by its navigation position.

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
    // New rows (as HitTableModel::setHits); the selection's reset is not announced.
    void setHits(const HitSequence* hits, const std::vector<std::uint32_t>* admitted,
                 QStringList layer_names, double display_per_engine, int decimals,
                 const QString& unit);
    // Selects and shows the row of a navigation position, without announcing it.
    void showPosition(std::size_t position);

signals:
    void positionPicked(std::size_t position);

private:
    HitTableModel* model_;
    bool following_ = false;  // the selection follows the navigation
};

}  // namespace wc
