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

Widget_Filter_Attributes::Widget_Filter_Attributes(QWidget* parent) : QWidget(parent, Qt::Window) {
    setWindowFlags(Qt::WindowFlags(0x8001003));
    initFilterAttributes();
}

void Widget_Filter_Attributes::initFilterAttributes() {
    auto makeButton = [this](const QString& text, const char* name) {
        auto* button = new QPushButton(text, this);
        button->setObjectName(QString::fromLatin1(name));
        return button;
    };
    name_label_ = new QLabel(tr("Attribute :"), this);
    name_label_->setObjectName(QStringLiteral("label_Attribute"));
    name_ = new QComboBox(this);
    name_->setObjectName(QStringLiteral("comboBox_Attribute"));
    name_->setEditable(true);
    name_->setValidator(wc::makeNoCjkValidator(this));
    value_label_ = new QLabel(tr("Value :"), this);
    value_label_->setObjectName(QStringLiteral("label_Value"));
    value_ = new QLineEdit(this);
    value_->setObjectName(QStringLiteral("lineEdit_Value"));
    value_->setValidator(wc::makeNoCjkValidator(this));
    list_ = new QListWidget(this);
    list_->setObjectName(QStringLiteral("listWidget_Conditions"));
    logic_label_ = new QLabel(tr("Logic :"), this);
    logic_label_->setObjectName(QStringLiteral("label_Logic"));
    logic_ = new QComboBox(this);
    logic_->setObjectName(QStringLiteral("comboBox_Logic"));
    logic_->addItem(tr("All conditions (and)"));
    logic_->addItem(tr("Any condition (or)"));
    add_ = makeButton(tr("Add"), "pushButton_Add");
    remove_ = makeButton(tr("Remove"), "pushButton_Remove");
    clear_ = makeButton(tr("Clear"), "pushButton_Clear");
    apply_ = makeButton(tr("Apply"), "pushButton_Apply");
    close_ = makeButton(tr("Close"), "pushButton_Close");

    auto* fields = new QGridLayout;
    fields->addWidget(name_label_, 0, 0);
    fields->addWidget(name_, 0, 1);
    fields->addWidget(add_, 0, 2);
    fields->addWidget(value_label_, 1, 0);
    fields->addWidget(value_, 1, 1);
    fields->addWidget(remove_, 1, 2);
    auto* logic_row = new QHBoxLayout;
    logic_row->addWidget(logic_label_);
    logic_row->addWidget(logic_, 1);
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(clear_);
    buttons->addStretch();
    buttons->addWidget(apply_);
    buttons->addStretch();
    buttons->addWidget(close_);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(fields);
    layout->addWidget(list_);
    layout->addLayout(logic_row);
    layout->addLayout(buttons);
    resize(340, 320);

    connect(add_, &QPushButton::clicked, this, &Widget_Filter_Attributes::on_Add_clicked);
    connect(value_, &QLineEdit::returnPressed, this, &Widget_Filter_Attributes::on_Add_clicked);
    connect(remove_, &QPushButton::clicked, this, &Widget_Filter_Attributes::on_Remove_clicked);
    connect(clear_, &QPushButton::clicked, this, &Widget_Filter_Attributes::on_Clear_clicked);
    connect(apply_, &QPushButton::clicked, this, &Widget_Filter_Attributes::on_Apply_clicked);
    connect(close_, &QPushButton::clicked, this, &Widget_Filter_Attributes::on_Close_clicked);
    connect(logic_, QOverload<int>::of(&QComboBox::currentIndexChanged), this,
            [this](int index) { emit send_IncludeLogic(index); });
    setWindowTitle(tr("Attributes Filter"));
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
    list_->clear();
    for (const auto& condition : conditions_) {
        auto* item =
            new QListWidgetItem(QString::fromStdString(wc::attributeFieldText({condition})), list_);
        item->setData(Qt::UserRole, QString::fromStdString(condition.first));
    }
    emit send_attributeinfoFilter_list(conditions_);
}

void Widget_Filter_Attributes::change_language() {
    WC_GUARDED({
        name_label_->setText(tr("Attribute :"));
        value_label_->setText(tr("Value :"));
        logic_label_->setText(tr("Logic :"));
        logic_->setItemText(0, tr("All conditions (and)"));
        logic_->setItemText(1, tr("Any condition (or)"));
        add_->setText(tr("Add"));
        remove_->setText(tr("Remove"));
        clear_->setText(tr("Clear"));
        apply_->setText(tr("Apply"));
        close_->setText(tr("Close"));
        setWindowTitle(tr("Attributes Filter"));
    });
}
