#include "Widget_UserFilterList.h"

#include <QListWidget>
#include <QVBoxLayout>

#include "frame/DialogTexts.h"
#include "frame/ExceptionGuard.h"
#include "toolbar/UserFilterPresets.h"

Widget_UserFilterList::Widget_UserFilterList(QWidget* parent) : QWidget(parent, Qt::Window) {
    setWindowFlags(Qt::WindowFlags(0x8001003));
    auto* list = new QListWidget(this);
    list->setObjectName(QStringLiteral("listWidget_UserFilters"));
    // Each row keeps the untranslated name: the filter knows its presets by it.
    const QList<const char*> names = wc::offeredUserFilterSources();
    wc::setSourceItems(this, list, names);
    for (int row = 0; row < names.size(); ++row) {
        list->item(row)->setData(Qt::UserRole, QString::fromLatin1(names.at(row)));
    }
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(2, 2, 2, 2);
    layout->addWidget(list);
    resize(240, 300);
    connect(list, &QListWidget::itemClicked, this, [this](QListWidgetItem* item) {
        WC_GUARDED({
            hide();
            emit send_user_filter(item->data(Qt::UserRole).toString());
        });
    });
    wc::setSourceText(this, this, QT_TR_NOOP("User filter"));
}

void Widget_UserFilterList::change_language() {
    WC_GUARDED({ wc::retranslate(this); });
}
