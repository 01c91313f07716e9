#include "Widget_Filter_Attributes.h"

#include <QComboBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

#include "frame/ExceptionGuard.h"
#include "frame/Validators.h"
#include "toolbar/AttributeConditions.h"
#include "toolbar/PopupParts.h"

Widget_Filter_Attributes::Widget_Filter_Attributes(QWidget* parent) : QWidget(parent, Qt::Window) {
    setWindowFlags(Qt::WindowFlags(0x8001003));
    initFilterAttributes();
}

void Widget_Filter_Attributes::initFilterAttributes() {
    auto* name_label = wc::makeNamed<QLabel>(this, "label_Attribute", QT_TR_NOOP("Attribute :"));
    name_ = wc::makeNamed<QComboBox>(this, "comboBox_Attribute");
    name_->setEditable(true);
    name_->setValidator(wc::makeNoCjkValidator(this));
    auto* value_label = wc::makeNamed<QLabel>(this, "label_Value", QT_TR_NOOP("Value :"));
    value_ = wc::makeNamed<QLineEdit>(this, "lineEdit_Value");
    value_->setValidator(wc::makeNoCjkValidator(this));
    list_ = wc::makeNamed<QListWidget>(this, "listWidget_Conditions");
    auto* logic_label = wc::makeNamed<QLabel>(this, "label_Logic", QT_TR_NOOP("Logic :"));
    logic_ = wc::makeNamed<QComboBox>(this, "comboBox_Logic");
    wc::setSourceItems(this, logic_,
                       {QT_TR_NOOP("All conditions (and)"), QT_TR_NOOP("Any condition (or)")});
    auto* add = wc::makeNamed<QPushButton>(this, "pushButton_Add", QT_TR_NOOP("Add"));
    auto* remove = wc::makeNamed<QPushButton>(this, "pushButton_Remove", QT_TR_NOOP("Remove"));
    auto* clear = wc::makeNamed<QPushButton>(this, "pushButton_Clear", QT_TR_NOOP("Clear"));
    auto* apply = wc::makeNamed<QPushButton>(this, "pushButton_Apply", QT_TR_NOOP("Apply"));
    auto* close = wc::makeNamed<QPushButton>(this, "pushButton_Close", QT_TR_NOOP("Close"));

    auto* fields = new QGridLayout;
    fields->addWidget(name_label, 0, 0);
    fields->addWidget(name_, 0, 1);
    fields->addWidget(add, 0, 2);
    fields->addWidget(value_label, 1, 0);
    fields->addWidget(value_, 1, 1);
    fields->addWidget(remove, 1, 2);
    auto* logic_row = new QHBoxLayout;
    logic_row->addWidget(logic_label);
    logic_row->addWidget(logic_, 1);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(fields);
    layout->addWidget(list_);
    layout->addLayout(logic_row);
    layout->addLayout(wc::makeButtonRow({clear, apply, close}));
    resize(340, 320);

    connect(add, &QPushButton::clicked, this, &Widget_Filter_Attributes::on_Add_clicked);
    connect(value_, &QLineEdit::returnPressed, this, &Widget_Filter_Attributes::on_Add_clicked);
    connect(remove, &QPushButton::clicked, this, &Widget_Filter_Attributes::on_Remove_clicked);
    connect(clear, &QPushButton::clicked, this, &Widget_Filter_Attributes::on_Clear_clicked);
    connect(apply, &QPushButton::clicked, this, &Widget_Filter_Attributes::on_Apply_clicked);
    connect(close, &QPushButton::clicked, this, &Widget_Filter_Attributes::on_Close_clicked);
    connect(logic_, QOverload<int>::of(&QComboBox::currentIndexChanged), this,
            [this](int index) { emit send_IncludeLogic(index); });
    wc::setSourceText(this, this, QT_TR_NOOP("Attributes Filter"));
}

std::map<std::string, std::string> Widget_Filter_Attributes::get_attributeinfoFilter_list() const {
    return conditions_;
}

int Widget_Filter_Attributes::logic() const {
    return logic_->currentIndex();
}

void Widget_Filter_Attributes::set_attribute_names(const QStringList& names) {
    const QString typed = name_->currentText();
    name_->clear();
    name_->addItems(names);
    name_->setCurrentText(typed);
}

void Widget_Filter_Attributes::add_conditions(
    const std::map<std::string, std::string>& attributes) {
    for (const auto& attribute : attributes) {
        conditions_[attribute.first] = attribute.second;
    }
    conditionsChanged();
}

void Widget_Filter_Attributes::on_Add_clicked() {
    WC_GUARDED({
        const QString name = name_->currentText().trimmed();
        if (name.isEmpty()) {
            return;
        }
        conditions_[name.toStdString()] = value_->text().trimmed().toStdString();
        value_->clear();
        conditionsChanged();
    });
}

void Widget_Filter_Attributes::on_Remove_clicked() {
    WC_GUARDED({
        const QList<QListWidgetItem*> picked = list_->selectedItems();
        if (picked.isEmpty()) {
            return;
        }
        for (QListWidgetItem* item : picked) {
            conditions_.erase(item->data(Qt::UserRole).toString().toStdString());
        }
        conditionsChanged();
    });
}

void Widget_Filter_Attributes::on_Clear_clicked() {
    WC_GUARDED({ reset_conditions(); });
}

void Widget_Filter_Attributes::on_Apply_clicked() {
    WC_GUARDED({ emit apply_conditions(); });
}

void Widget_Filter_Attributes::on_Close_clicked() {
    WC_GUARDED({ close(); });
}

void Widget_Filter_Attributes::reset_conditions() {
    if (conditions_.empty()) {
        return;
    }
    conditions_.clear();
    conditionsChanged();
}

void Widget_Filter_Attributes::conditionsChanged() {
    QStringList texts;
    QStringList names;
    for (const auto& condition : conditions_) {
        texts << QString::fromStdString(wc::attributeFieldText({condition}));
        names << QString::fromStdString(condition.first);
    }
    wc::setKeyedRows(list_, texts, names);
    emit send_attributeinfoFilter_list(conditions_);
}

void Widget_Filter_Attributes::change_language() {
    WC_GUARDED({ wc::retranslate(this); });
}
