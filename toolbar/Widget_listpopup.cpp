#include "Widget_listpopup.h"

#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

#include "frame/ExceptionGuard.h"
#include "frame/Validators.h"
#include "toolbar/PopupParts.h"

namespace {

QString nameOf(const QString& entry) {
    return entry.section(QLatin1Char('('), 0, 0).trimmed();
}

}  // namespace

Widget_listpopup::Widget_listpopup(QWidget* parent) : QWidget(parent, Qt::Window) {
    setWindowFlags(Qt::WindowFlags(0x8001003));
    initListPopup();
}

void Widget_listpopup::initListPopup() {
    find_ = wc::makeNamed<QLineEdit>(this, "lineEdit_Find", QT_TR_NOOP("*"));
    find_->setValidator(wc::makeNoCjkValidator(this));
    list_ = wc::makeNamed<QListWidget>(this, "listWidget_Symbols");
    list_->setSelectionMode(QAbstractItemView::ExtendedSelection);
    auto* ok = wc::makeNamed<QPushButton>(this, "pushButton_Ok", QT_TR_NOOP("Ok"));
    auto* close = wc::makeNamed<QPushButton>(this, "pushButton_Close", QT_TR_NOOP("Close"));

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(find_);
    layout->addWidget(list_);
    layout->addLayout(wc::makeButtonRow({ok, close}));
    resize(260, 360);

    connect(find_, &QLineEdit::textChanged, this, &Widget_listpopup::showMatching);
    connect(list_, &QListWidget::itemDoubleClicked, this, &Widget_listpopup::on_Ok_clicked);
    connect(ok, &QPushButton::clicked, this, &Widget_listpopup::on_Ok_clicked);
    connect(close, &QPushButton::clicked, this, &Widget_listpopup::on_Close_clicked);
    wc::setSourceText(this, this, QT_TR_NOOP("Symbol List"));
}

void Widget_listpopup::set_items(const QStringList& shown, const QStringList& engine) {
    QStringList keys = engine.mid(0, shown.size());
    for (int i = keys.size(); i < shown.size(); ++i) {
        keys << nameOf(shown.at(i));
    }
    wc::setKeyedRows(list_, shown, keys);
    showMatching(find_->text());
}

QStringList Widget_listpopup::find_input_items(const QString& pattern) const {
    const QRegularExpression matcher = wc::wildcardMatcher(pattern);
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
    const QRegularExpression matcher = wc::findMatcher(text);
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
    WC_GUARDED({ wc::retranslate(this); });
}
