#include "MeasureComboBox.h"

#include <QSignalBlocker>

namespace wc {

namespace {
constexpr int kDecimals = 3;
}

MeasureComboBox::MeasureComboBox(QWidget* parent) : LazyComboBox(parent) {
    setFiller([this] {
        if (stale_) {
            fill();
        }
    });
}

void MeasureComboBox::reset(const QString& all, std::function<std::vector<long long>()> keys) {
    source_ = std::move(keys);
    keys_.clear();
    stale_ = true;
    const QSignalBlocker blocker(this);
    clear();
    addItem(all);
}

std::optional<long long> MeasureComboBox::chosenKey() const {
    const int index = currentIndex();
    if (index < 1 || index > int(keys_.size())) {
        return std::nullopt;
    }
    return keys_[std::size_t(index - 1)];
}

void MeasureComboBox::fill() {
    stale_ = false;
    keys_ = source_ ? source_() : std::vector<long long>();
    QStringList entries;
    entries.reserve(int(keys_.size()) + 1);
    entries << itemText(0);
    for (long long key : keys_) {
        entries << QString::number(double(key) / 1000.0, 'f', kDecimals);
    }
    // One insertion for the whole list: a combo box re-measures itself on every insertion.
    const QSignalBlocker blocker(this);
    clear();
    addItems(entries);
}

}  // namespace wc
