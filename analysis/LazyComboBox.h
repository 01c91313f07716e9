#pragma once
// A combo box that fills its entries only when its list is about to open, so that entries which
// are costly to compute are never computed for a list nobody looks at.

#include <QComboBox>
#include <functional>

#include "frame/WidgetCommonExport.h"

namespace wc {

class WIDGET_COMMON_EXPORT LazyComboBox : public QComboBox {
    Q_OBJECT
public:
    using QComboBox::QComboBox;

    // Called before the list opens; it may replace the entries.
    void setFiller(std::function<void()> filler) { filler_ = std::move(filler); }

    void showPopup() override {
        if (filler_) {
            filler_();
        }
        QComboBox::showPopup();
    }

private:
    std::function<void()> filler_;
};

}  // namespace wc
