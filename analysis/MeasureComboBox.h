#pragma once
// The viewer's "Meas:" box: "All", then every distinct value of the current category as the
// display shows it (keys in thousandths of the display unit). The values cost a pass over the
// category's hits, so they are listed only when the list opens.

#include <functional>
#include <optional>
#include <vector>

#include "LazyComboBox.h"
#include "frame/WidgetCommonExport.h"

namespace wc {

class WIDGET_COMMON_EXPORT MeasureComboBox : public LazyComboBox {
    Q_OBJECT
public:
    explicit MeasureComboBox(QWidget* parent);

    // From now on the list offers `all` and the keys `keys` gives, computed when it opens.
    void reset(const QString& all, std::function<std::vector<long long>()> keys);
    // The key of the chosen entry; none for "All".
    std::optional<long long> chosenKey() const;

private:
    void fill();

    std::function<std::vector<long long>()> source_;
    std::vector<long long> keys_;
    bool stale_ = true;
};

}  // namespace wc
