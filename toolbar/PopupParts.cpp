#include "PopupParts.h"

#include <QHBoxLayout>
#include <QListWidget>

namespace wc {

QRegularExpression wildcardMatcher(const QString& pattern) {
    return QRegularExpression(QRegularExpression::wildcardToRegularExpression(pattern),
                              QRegularExpression::CaseInsensitiveOption);
}

QRegularExpression findMatcher(const QString& text) {
    return wildcardMatcher(text.contains(QLatin1Char('*')) ? text : QLatin1Char('*') + text + '*');
}

void setKeyedRows(QListWidget* list, const QStringList& texts, const QStringList& keys) {
    list->clear();
    for (int row = 0; row < texts.size(); ++row) {
        auto* item = new QListWidgetItem(texts.at(row), list);
        item->setData(Qt::UserRole, row < keys.size() ? keys.at(row) : texts.at(row));
    }
}

void showRaised(QWidget* popup) {
    popup->show();
    popup->raise();
}

QHBoxLayout* makeButtonRow(const QList<QWidget*>& widgets) {
    auto* row = new QHBoxLayout;
    for (int i = 0; i < widgets.size(); ++i) {
        if (i > 0) {
            row->addStretch();
        }
        row->addWidget(widgets.at(i));
    }
    return row;
}

}  // namespace wc
