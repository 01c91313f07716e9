#include "HitTableModel.h"

#include <QApplication>
#include <QFont>
#include <QIcon>
#include <QPalette>
#include <QStyle>
#include <algorithm>
#include <limits>
#include <numeric>

#include "ViewerDrawing.h"

namespace wc {

HitTableModel::HitTableModel(QObject* parent) : QAbstractTableModel(parent) {}

void HitTableModel::setNavigable(const HitBrowser* browser, HitColumns columns,
                                 const QString& unit) {
    beginResetModel();
    browser_ = browser;
    columns_ = std::move(columns);
    unit_ = unit;
    grouping_ = GroupKey::None;
    folded_labels_.clear();
    navigable_ = browser != nullptr ? browser->navigator().count() : 0;
    rows_.clear();
    groups_.clear();
    if (sort_column_ != IndexColumn || sort_order_ != Qt::AscendingOrder) {
        materialise();
    }
    arrange();
    endResetModel();
}

void HitTableModel::setGrouped(const HitBrowser* browser, std::vector<TableHit> hits, GroupKey key,
                               HitColumns columns, const QString& unit, const QString& no_net) {
    beginResetModel();
    browser_ = browser;
    columns_ = std::move(columns);
    unit_ = unit;
    if (key != grouping_) {
        folded_labels_.clear();
    }
    grouping_ = key;
    navigable_ = 0;
    rows_ = std::move(hits);
    groups_ = groupHits(rows_, key, browser->model(), browser->index(), no_net);
    folded_.assign(groups_.size(), 0);
    for (std::size_t g = 0; g < groups_.size(); ++g) {
        folded_[g] = folded_labels_.count(groups_[g].label) != 0;
    }
    arrange();
    endResetModel();
}

void HitTableModel::setMarks(const std::vector<std::uint8_t>* visited,
                             std::function<QString(std::size_t)> state_tip) {
    visited_ = visited;
    state_tip_ = std::move(state_tip);
    if (rowCount() > 0) {
        emit dataChanged(index(0, 0), index(rowCount() - 1, HitColumnCount - 1));
    }
}

void HitTableModel::retranslate() {
    emit headerDataChanged(Qt::Horizontal, 0, HitColumnCount - 1);
    if (rowCount() > 0) {
        emit dataChanged(index(0, 0), index(rowCount() - 1, HitColumnCount - 1));
    }
}

std::size_t HitTableModel::listedCount() const {
    return natural() ? navigable_ : rows_.size();
}

TableHit HitTableModel::listedAt(std::size_t i) const {
    if (!natural()) {
        return rows_[i];
    }
    return {std::uint32_t(browser_->hitAt(i).number), std::uint32_t(i), browser_->item()};
}

// A hit of the current category is found through the navigation's few lists, any other through
// the model's index.
HitRef HitTableModel::refOf(const TableHit& hit) const {
    if (browser_ == nullptr) {
        return {};
    }
    if (hit.item == browser_->item()) {
        const HitRef ref = browser_->hitAt(hit.position);
        if (ref.hit != nullptr && ref.number == hit.number) {
            return ref;
        }
    }
    return browser_->index().at(hit.number);
}

bool HitTableModel::isGroupRow(int row) const {
    return row >= 0 && std::size_t(row) < flat_.size() && flat_[std::size_t(row)] < 0;
}

std::vector<int> HitTableModel::headingRows() const {
    std::vector<int> rows;
    for (std::size_t row = 0; row < flat_.size(); ++row) {
        if (flat_[row] < 0) {
            rows.push_back(int(row));
        }
    }
    return rows;
}

void HitTableModel::toggleGroup(int row) {
    if (isGroupRow(row)) {
        const std::size_t group = std::size_t(-1 - flat_[std::size_t(row)]);
        setFolded(group, !folded_[group]);
    }
}

void HitTableModel::setFolded(std::size_t group, bool folded) {
    beginResetModel();
    folded_[group] = folded;
    if (folded) {
        folded_labels_.insert(groups_[group].label);
    } else {
        folded_labels_.erase(groups_[group].label);
    }
    layOut();
    endResetModel();
}

std::optional<TableHit> HitTableModel::hitOfRow(int row) const {
    if (row < 0 || row >= rowCount()) {
        return std::nullopt;
    }
    if (grouping_ == GroupKey::None) {
        return listedAt(std::size_t(row));
    }
    const std::int32_t entry = flat_[std::size_t(row)];
    return entry < 0 ? std::nullopt : std::optional<TableHit>(rows_[std::size_t(entry)]);
}

int HitTableModel::rowOfPosition(std::size_t position) const {
    if (natural()) {
        return position < navigable_ ? int(position) : -1;
    }
    return position < row_of_.size() ? row_of_[position] : -1;
}

void HitTableModel::reveal(std::size_t position) {
    if (grouping_ == GroupKey::None || position >= listed_of_.size() || listed_of_[position] < 0) {
        return;
    }
    const std::size_t listed = std::size_t(listed_of_[position]);
    for (std::size_t g = 0; g < groups_.size(); ++g) {
        if (listed >= groups_[g].begin && listed < groups_[g].end && folded_[g]) {
            setFolded(g, false);
            return;
        }
    }
}

std::optional<TableHit> HitTableModel::nearest(const Korvo::API::point& at, double radius) const {
    std::optional<TableHit> best;
    double best_distance = std::numeric_limits<double>::infinity();
    const std::size_t count = listedCount();
    for (std::size_t i = 0; i < count; ++i) {
        const TableHit hit = listedAt(i);
        const double distance = distanceToShape(refOf(hit).hit->shape, at);
        if (distance <= radius && distance < best_distance) {
            best_distance = distance;
            best = hit;
        }
    }
    return best;
}

// ---- arranging rows -------------------------------------------------------------------------

// Each sort starts from the listed order (navigation order; hit numbers within a group), so
// that it never depends on the sort before.
void HitTableModel::arrange() {
    const auto byPosition = [](const TableHit& a, const TableHit& b) {
        return a.position < b.position;
    };
    const auto byNumber = [](const TableHit& a, const TableHit& b) { return a.number < b.number; };
    if (grouping_ == GroupKey::None) {
        if (!std::is_sorted(rows_.begin(), rows_.end(), byPosition)) {
            std::sort(rows_.begin(), rows_.end(), byPosition);
        }
        sortRange(0, rows_.size());
    } else {
        for (const HitGroup& group : groups_) {
            std::sort(rows_.begin() + std::ptrdiff_t(group.begin),
                      rows_.begin() + std::ptrdiff_t(group.end), byNumber);
            sortRange(group.begin, group.end);
        }
    }
    layOut();
}

// The index column keeps the listed order (the navigation's); the others sort stably by their
// number or text, descending being ascending reversed.
void HitTableModel::sortRange(std::size_t begin, std::size_t end) {
    if (end - begin < 2) {
        return;
    }
    const auto first = rows_.begin() + std::ptrdiff_t(begin);
    const auto last = rows_.begin() + std::ptrdiff_t(end);
    if (sort_column_ != IndexColumn) {
        std::vector<std::uint32_t> order(end - begin);
        std::iota(order.begin(), order.end(), 0u);
        if (HitColumns::numeric(sort_column_)) {
            std::vector<double> keys;
            keys.reserve(order.size());
            for (auto it = first; it != last; ++it) {
                keys.push_back(columns_.number(sort_column_, refOf(*it)));
            }
            std::stable_sort(order.begin(), order.end(), [&keys](std::uint32_t a, std::uint32_t b) {
                return keys[a] < keys[b];
            });
        } else {
            std::vector<QString> keys;
            keys.reserve(order.size());
            for (auto it = first; it != last; ++it) {
                keys.push_back(columns_.text(sort_column_, refOf(*it), it->position));
            }
            std::stable_sort(order.begin(), order.end(), [&keys](std::uint32_t a, std::uint32_t b) {
                return keys[a] < keys[b];
            });
        }
        std::vector<TableHit> sorted;
        sorted.reserve(order.size());
        for (std::uint32_t i : order) {
            sorted.push_back(*(first + i));
        }
        std::copy(sorted.begin(), sorted.end(), first);
    }
    if (sort_order_ == Qt::DescendingOrder) {
        std::reverse(first, last);
    }
}

// Rows in order (headings before their unfolded hits) and, for the current category, the way
// from a navigation position back to its listed hit and its row.
void HitTableModel::layOut() {
    flat_.clear();
    row_of_.clear();
    listed_of_.clear();
    if (natural()) {
        return;
    }
    const int current = browser_ != nullptr ? browser_->item() : -1;
    std::size_t positions = 0;
    for (const TableHit& hit : rows_) {
        if (hit.item == current) {
            positions = std::max<std::size_t>(positions, hit.position + 1u);
        }
    }
    row_of_.assign(positions, -1);
    listed_of_.assign(positions, -1);
    const auto place = [&](std::size_t listed, bool shown) {
        const TableHit& hit = rows_[listed];
        const std::size_t row = grouping_ == GroupKey::None ? listed : flat_.size();
        if (hit.item == current) {
            listed_of_[hit.position] = std::int32_t(listed);
            row_of_[hit.position] = shown ? std::int32_t(row) : -1;
        }
        if (shown && grouping_ != GroupKey::None) {
            flat_.push_back(std::int32_t(listed));
        }
    };
    if (grouping_ == GroupKey::None) {
        for (std::size_t i = 0; i < rows_.size(); ++i) {
            place(i, true);
        }
        return;
    }
    for (std::size_t g = 0; g < groups_.size(); ++g) {
        flat_.push_back(-1 - std::int32_t(g));
        for (std::size_t i = groups_[g].begin; i < groups_[g].end; ++i) {
            place(i, !folded_[g]);
        }
    }
}

// ---- the model ------------------------------------------------------------------------------

int HitTableModel::rowCount(const QModelIndex& parent) const {
    if (parent.isValid()) {
        return 0;
    }
    return grouping_ == GroupKey::None ? int(listedCount()) : int(flat_.size());
}

int HitTableModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : HitColumnCount;
}

QVariant HitTableModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() >= rowCount()) {
        return {};
    }
    if (isGroupRow(index.row())) {
        return groupData(std::size_t(-1 - flat_[std::size_t(index.row())]), index.column(), role);
    }
    if (role == GroupRole) {
        return false;
    }
    return hitData(*hitOfRow(index.row()), index.column(), role);
}

QVariant HitTableModel::hitData(const TableHit& hit, int column, int role) const {
    const bool visited =
        visited_ != nullptr && hit.number < visited_->size() && (*visited_)[hit.number] != 0;
    switch (role) {
        case Qt::DisplayRole:
            return columns_.text(column, refOf(hit), hit.position);
        case Qt::TextAlignmentRole:
            return column == IndexColumn || HitColumns::numeric(column)
                       ? int(Qt::AlignRight | Qt::AlignVCenter)
                       : int(Qt::AlignLeft | Qt::AlignVCenter);
        case VisitedRole:
            return visited;
        case Qt::DecorationRole:
            if (column == IndexColumn && visited) {
                return QApplication::style()->standardIcon(QStyle::SP_DialogApplyButton);
            }
            return {};
        case Qt::ForegroundRole:
            return visited
                       ? QVariant(QApplication::palette().color(QPalette::Disabled, QPalette::Text))
                       : QVariant();
        case Qt::ToolTipRole:
            return column == StateColumn && state_tip_ ? state_tip_(hit.number) : QVariant();
        default:
            return {};
    }
}

QVariant HitTableModel::groupData(std::size_t group, int column, int role) const {
    switch (role) {
        case GroupRole:
            return true;
        case Qt::DisplayRole:
            if (column != IndexColumn) {
                return {};
            }
            return QStringLiteral("%1 %2 (%3)")
                .arg(folded_[group] ? QChar(0x25B8) : QChar(0x25BE))
                .arg(groups_[group].label)
                .arg(qulonglong(groups_[group].size()));
        case Qt::FontRole: {
            QFont font;
            font.setBold(true);
            return font;
        }
        case Qt::BackgroundRole:
            return QApplication::palette().color(QPalette::AlternateBase);
        default:
            return {};
    }
}

QVariant HitTableModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole) {
        return QAbstractTableModel::headerData(section, orientation, role);
    }
    const auto withUnit = [this](const QString& title) {
        return unit_.isEmpty() ? title : title + QStringLiteral(" (") + unit_ + ')';
    };
    switch (section) {
        case IndexColumn:
            return tr("Index");
        case ValueColumn:
            return withUnit(tr("Value"));
        case RequiredColumn:
            return withUnit(tr("Required"));
        case DifferenceColumn:
            return withUnit(tr("Difference"));
        case LayerColumn:
            return tr("Layer");
        case LocationColumn:
            return withUnit(tr("Location"));
        case NetsColumn:
            return tr("Nets");
        case StateColumn:
            return tr("State");
        default:
            return {};
    }
}

void HitTableModel::sort(int column, Qt::SortOrder order) {
    emit layoutAboutToBeChanged({}, QAbstractItemModel::VerticalSortHint);
    sort_column_ = column;
    sort_order_ = order;
    if (grouping_ == GroupKey::None) {
        rows_.clear();
        if (column != IndexColumn || order != Qt::AscendingOrder) {
            materialise();
        }
    }
    arrange();
    emit layoutChanged({}, QAbstractItemModel::VerticalSortHint);
}

// The navigation's hits as listed hits, to be sorted.
void HitTableModel::materialise() {
    std::vector<TableHit> rows;
    rows.reserve(navigable_);
    for (std::size_t p = 0; p < navigable_; ++p) {
        rows.push_back(listedAt(p));
    }
    rows_ = std::move(rows);
}

}  // namespace wc
