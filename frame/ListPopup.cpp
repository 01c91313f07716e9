#include "ListPopup.h"

#include <QHBoxLayout>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

namespace wc {

ListPopup::ListPopup(Kind kind, QWidget* parent) : QWidget(parent, Qt::Tool), kind_(kind) {
    setObjectName(kind == LayerList ? QStringLiteral("popup_LayerList")
                                    : QStringLiteral("popup_NameList"));
    list_ = new QListWidget(this);
    list_->setObjectName(QStringLiteral("listWidget_Items"));
    list_->setSelectionMode(kind == LayerList ? QAbstractItemView::ExtendedSelection
                                              : QAbstractItemView::SingleSelection);
    ok_ = new QPushButton(tr("Ok"), this);
    ok_->setObjectName(QStringLiteral("pushButton_Ok"));
    auto* close = new QPushButton(tr("Close"), this);
    close->setObjectName(QStringLiteral("pushButton_Close"));

    auto* buttons = new QHBoxLayout;
    buttons->addWidget(ok_);
    buttons->addStretch();
    buttons->addWidget(close);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(4, 4, 4, 4);
    layout->addWidget(list_);
    layout->addLayout(buttons);
    resize(220, 260);

    connect(ok_, &QPushButton::clicked, this, &ListPopup::choose);
    connect(close, &QPushButton::clicked, this, &QWidget::hide);
    connect(list_, &QListWidget::itemActivated, this, &ListPopup::onItemActivated);
    setWindowTitle(kind == LayerList ? tr("Layers") : tr("ERF"));
}

void ListPopup::setItems(const QStringList& items) {
    list_->clear();
    list_->addItems(items);
}

QStringList ListPopup::items() const {
    QStringList result;
    for (int row = 0; row < list_->count(); ++row) {
        result.append(list_->item(row)->text());
    }
    return result;
}

void ListPopup::popUp(QWidget* anchor) {
    if (anchor != nullptr) {
        move(anchor->mapToGlobal(QPoint(0, anchor->height())));
    }
    show();
    raise();
}

void ListPopup::choose() {
    QStringList chosen;
    // Rows in list order, not in the order they were clicked.
    for (int row = 0; row < list_->count(); ++row) {
        if (list_->item(row)->isSelected()) {
            chosen.append(list_->item(row)->text());
        }
    }
    if (chosen.isEmpty()) {
        return;
    }
    hide();
    emit send_Text(kind_ == LayerList ? chosen.join(QLatin1Char(';')) : chosen.front());
}

void ListPopup::onItemActivated(QListWidgetItem* item) {
    if (kind_ == NameList) {
        list_->setCurrentItem(item);
        choose();
    }
}

}  // namespace wc
