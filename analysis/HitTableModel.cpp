#include "HitTableModel.h"

#include <algorithm>
#include <numeric>

namespace wc {

namespace {

// "GND" for a same-net pair, "GND / VCC" between two nets, empty where the nets are unknown.
QString netsText(const Korvo::API::check_info& hit) {
    QStringList names;
    for (const std::string& net : hit.nets) {
        names << QString::fromStdString(net);
    }
    return names.join(QStringLiteral(" / "));
}

}  // namespace

HitTableModel::HitTableModel(QObject* parent) : QAbstractTableModel(parent) {}

void HitTableModel::setHits(const HitSequence* hits, const std::vector<std::uint32_t>* admitted,
                            QStringList layer_names, double display_per_engine, int decimals,
                            const QString& unit) {
    beginResetModel();
    hits_ = hits;
    admitted_ = admitted;
    layer_names_ = std::move(layer_names);
    display_per_engine_ = display_per_engine;
    decimals_ = decimals;
    unit_ = unit;
    count_ = hits == nullptr ? 0 : (admitted != nullptr ? admitted->size() : hits->size());
    applySort();
    endResetModel();
}

std::size_t HitTableModel::positionOfRow(int row) const {
    return order_.empty() ? std::size_t(row) : order_[std::size_t(row)];
}

int HitTableModel::rowOfPosition(std::size_t position) const {
    if (position >= count_) {
        return -1;
    }
    return inverse_.empty() ? int(position) : int(inverse_[position]);
}

HitRef HitTableModel::hitAt(std::size_t position) const {
    if (hits_ == nullptr || position >= count_) {
        return {};
    }
    return hits_->at(admitted_ != nullptr ? (*admitted_)[position] : position);
}

int HitTableModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : int(count_);
}

int HitTableModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : ColumnCount;
}

QVariant HitTableModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() >= int(count_)) {
        return {};
    }
    const std::size_t position = positionOfRow(index.row());
    if (role == Qt::TextAlignmentRole) {
        return index.column() >= LayerColumn ? int(Qt::AlignLeft | Qt::AlignVCenter)
                                             : int(Qt::AlignRight | Qt::AlignVCenter);
    }
    if (role != Qt::DisplayRole) {
        return {};
    }
    const HitRef hit = hitAt(position);
    switch (index.column()) {
        case IndexColumn:
            return qulonglong(position + 1);
        case ValueColumn:
            return QString::number(hit.hit->value * display_per_engine_, 'f', decimals_);
        case LayerColumn:
            return hit.layer >= 0 && hit.layer < layer_names_.size() ? layer_names_[hit.layer]
                                                                     : QString();
        case NetsColumn:
            return netsText(*hit.hit);
        default:
            return {};
    }
}

QVariant HitTableModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole) {
        return QAbstractTableModel::headerData(section, orientation, role);
    }
    switch (section) {
        case IndexColumn:
            return tr("Index");
        case ValueColumn:
            return unit_.isEmpty() ? tr("Value") : tr("Value") + QStringLiteral(" (") + unit_ + ')';
        case LayerColumn:
            return tr("Layer");
        case NetsColumn:
            return tr("Nets");
        default:
            return {};
    }
}

void HitTableModel::sort(int column, Qt::SortOrder order) {
    emit layoutAboutToBeChanged({}, QAbstractItemModel::VerticalSortHint);
    sort_column_ = column;
    sort_order_ = order;
    applySort();
    emit layoutChanged({}, QAbstractItemModel::VerticalSortHint);
}

void HitTableModel::applySort() {
    order_.clear();
    inverse_.clear();
    if (count_ == 0 || (sort_column_ == IndexColumn && sort_order_ == Qt::AscendingOrder)) {
        return;
    }
    order_.resize(count_);
    std::iota(order_.begin(), order_.end(), 0u);
    if (sort_column_ == ValueColumn) {
        std::vector<double> values(count_);
        for (std::size_t i = 0; i < count_; ++i) {
            values[i] = hitAt(i).hit->value;
        }
        std::stable_sort(order_.begin(), order_.end(), [&values](std::uint32_t a, std::uint32_t b) {
            return values[a] < values[b];
        });
    } else if (sort_column_ == NetsColumn) {
        std::vector<QString> nets(count_);
        for (std::size_t i = 0; i < count_; ++i) {
            nets[i] = netsText(*hitAt(i).hit);
        }
        std::stable_sort(order_.begin(), order_.end(),
                         [&nets](std::uint32_t a, std::uint32_t b) { return nets[a] < nets[b]; });
    } else if (sort_column_ == LayerColumn) {
        std::vector<int> layers(count_);
        for (std::size_t i = 0; i < count_; ++i) {
            layers[i] = hitAt(i).layer;
        }
        std::stable_sort(
            order_.begin(), order_.end(), [this, &layers](std::uint32_t a, std::uint32_t b) {
                const QString& x =
                    layers[a] < layer_names_.size() ? layer_names_[layers[a]] : QString();
                const QString& y =
                    layers[b] < layer_names_.size() ? layer_names_[layers[b]] : QString();
                return x < y;
            });
    }
    if (sort_order_ == Qt::DescendingOrder) {
        std::reverse(order_.begin(), order_.end());
    }
    inverse_.resize(count_);
    for (std::size_t row = 0; row < count_; ++row) {
        inverse_[order_[row]] = std::uint32_t(row);
    }
}

}  // namespace wc
