#include "Widget_listpopup.h"

#include <QHBoxLayout>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QRegularExpression>
#include <QVBoxLayout>

#include "frame/ExceptionGuard.h"
#include "frame/Validators.h"

namespace {

QString nameOf(const QString& entry) {
    return entry.section(QLatin1Char('('), 0, 0).trimmed();
}

QRegularExpression wildcard(const QString& pattern) {
    return QRegularExpression(QRegularExpression::wildcardToRegularExpression(pattern),
                              QRegularExpression::CaseInsensitiveOption);
}

}  // namespace

Widget_listpopup::Widget_listpopup(QWidget* parent) : QWidget(parent, Qt::Window) {
    setWindowFlags(Qt::WindowFlags(0x8001003));
    initListPopup();
}

void Widget_listpopup::initListPopup() {
    find_ = new QLineEdit(this);
    find_->setObjectName(QStringLiteral("lineEdit_Find"));
    find_->setPlaceholderText(tr("*"));
    find_->setValidator(wc::makeNoCjkValidator(this));
    list_ = new QListWidget(this);
    list_->setObjectName(QStringLiteral("listWidget_Symbols"));
    list_->setSelectionMode(QAbstractItemView::ExtendedSelection);
    ok_ = new QPushButton(tr("Ok"), this);
    ok_->setObjectName(QStringLiteral("pushButton_Ok"));
    close_ = new QPushButton(tr("Close"), this);
    close_->setObjectName(QStringLiteral("pushButton_Close"));

    auto* buttons = new QHBoxLayout;
    buttons->addWidget(ok_);
    buttons->addStretch();
    buttons->addWidget(close_);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(find_);
    layout->addWidget(list_);
    layout->addLayout(buttons);
    resize(260, 360);

    connect(find_, &QLineEdit::textChanged, this, &Widget_listpopup::showMatching);
    connect(list_, &QListWidget::itemDoubleClicked, this, &Widget_listpopup::on_Ok_clicked);
    connect(ok_, &QPushButton::clicked, this, &Widget_listpopup::on_Ok_clicked);
    connect(close_, &QPushButton::clicked, this, &Widget_listpopup::on_Close_clicked);
    setWindowTitle(tr("Symbol List"));
}

void Widget_listpopup::set_items(const QStringList& shown, const QStringList& engine) {
    list_->clear();
    for (int i = 0; i < shown.size(); ++i) {
        auto* item = new QListWidgetItem(shown.at(i), list_);
        item->setData(Qt::UserRole, i < engine.size() ? engine.at(i) : nameOf(shown.at(i)));
    }
    showMatching(find_->text());
}

QStringList Widget_listpopup::find_input_items(const QString& pattern) const {
    const QRegularExpression matcher = wildcard(pattern);
    QStringList found;
    for (int row = 0; row < list_->count(); ++row) {
        const QString entry = list_->item(row)->text();
        if (matcher.match(nameOf(entry)).hasMatch()) {
            found << entry;
        }
    }
    return found;
}

void Widget_listpopup::showMatching(const QString& text) {
    const QRegularExpression matcher =
        wildcard(text.contains(QLatin1Char('*')) ? text : QLatin1Char('*') + text + '*');
    for (int row = 0; row < list_->count(); ++row) {
        QListWidgetItem* item = list_->item(row);
        item->setHidden(!matcher.match(nameOf(item->text())).hasMatch());
    }
}

void Widget_listpopup::on_Ok_clicked() {
    WC_GUARDED({
        QStringList shown;
        QStringList engine;
        for (QListWidgetItem* item : list_->selectedItems()) {
            if (!item->isHidden()) {
                shown << nameOf(item->text());
                engine << item->data(Qt::UserRole).toString();
            }
        }
        if (!shown.isEmpty()) {
            emit send_selected_symbols(shown, engine);
        }
        hide();
    });
}

void Widget_listpopup::on_Close_clicked() {
    WC_GUARDED({ close(); });
}

void Widget_listpopup::change_language() {
    WC_GUARDED({
        ok_->setText(tr("Ok"));
        close_->setText(tr("Close"));
        setWindowTitle(tr("Symbol List"));
    });
}
