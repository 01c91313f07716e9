#include "Widget_UserFilterList.h"

#include <QListWidget>
#include <QVBoxLayout>

#include "frame/ExceptionGuard.h"
#include "toolbar/UserFilterPresets.h"

Widget_UserFilterList::Widget_UserFilterList(QWidget* parent) : QWidget(parent, Qt::Window) {
    setWindowFlags(Qt::WindowFlags(0x8001003));
    list_ = new QListWidget(this);
    list_->setObjectName(QStringLiteral("listWidget_UserFilters"));
    // Each row keeps the untranslated name: the filter knows its presets by it.
    for (const QString& name : wc::offeredUserFilters()) {
        auto* item = new QListWidgetItem(tr(qPrintable(name)), list_);
        item->setData(Qt::UserRole, name);
    }
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(2, 2, 2, 2);
    layout->addWidget(list_);
    resize(240, 300);
    connect(list_, &QListWidget::itemClicked, this, [this](QListWidgetItem* item) {
        WC_GUARDED({
            hide();
            emit send_user_filter(item->data(Qt::UserRole).toString());
        });
    });
    setWindowTitle(tr("User filter"));
}

void Widget_UserFilterList::change_language() {
    WC_GUARDED({
        for (int row = 0; row < list_->count(); ++row) {
            QListWidgetItem* item = list_->item(row);
            item->setText(tr(qPrintable(item->data(Qt::UserRole).toString())));
        }
        setWindowTitle(tr("User filter"));
    });
}
