#include "Widget_Contourize.h"

#include <glog/logging.h>

#include <QButtonGroup>
#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

#include "edit/contourize_params.h"
#include "frame/DialogTexts.h"
#include "frame/ExceptionGuard.h"
#include "frame/FieldTable.h"
#include "frame/Validators.h"

namespace {

constexpr int kLabelWidth = 125;

enum Field { Accuracy, MaxSize };
enum Mode { ModeXorY = 1, ModeXandY = 2, ModeArea = 3 };

// Defaults and limits in mil. The reset text goes back as it stands, in whatever unit is shown.
std::vector<wc::FieldRow<contourize_params>> fieldRows() {
    return {
        {QT_TRANSLATE_NOOP("Widget_Contourize", "Accuracy :"), "accuracy", "Accuracy", 0.25, 0.0,
         2.0, "0.25", &contourize_params::accuracy},
        {QT_TRANSLATE_NOOP("Widget_Contourize", "Max Size :"), "clean_hole_size", "MaxSize", 3.0,
         0.0, 8000.0, "3", &contourize_params::max_size},
    };
}

// After a language change the field labels are spaced differently: both sets are kept.
const char* const kLaterLabels[] = {QT_TRANSLATE_NOOP("Widget_Contourize", "Accuracy           :"),
                                    QT_TRANSLATE_NOOP("Widget_Contourize", "Max Size          :")};

}  // namespace

Widget_Contourize::Widget_Contourize(QWidget* parent)
    : QWidget(parent, Qt::Window), handle_(parent) {
    setWindowFlags(Qt::WindowFlags(0x8001003));
    initContourize();
}

Widget_Contourize::~Widget_Contourize() = default;

void Widget_Contourize::initContourize() {
    wc::makeNameValidator(this)->setObjectName(QStringLiteral("nameValidator"));
    wc::makeNoCjkValidator(this)->setObjectName(QStringLiteral("noCjkValidator"));

    const std::vector<wc::FieldRow<contourize_params>> rows = fieldRows();
    fields_ = std::make_unique<wc::FieldTable<contourize_params>>(this, handle_, rows,
                                                                  wc::FieldForm::Plain);
    auto* separate = make<QLabel>("label_SeparateToIslands", QT_TR_NOOP("Separate to Islands :"));
    combo_separate_ = new QComboBox(this);
    combo_separate_->setObjectName(QStringLiteral("comboBox_SeparateToIslands"));
    wc::setSourceItems(this, combo_separate_, {QT_TR_NOOP("Yes"), QT_TR_NOOP("No")});
    combo_separate_->setCurrentIndex(0);
    auto* clean_holes = make<QLabel>("label_CleanHoles", QT_TR_NOOP("     Clean Holes"));
    clean_holes->setAlignment(Qt::AlignHCenter | Qt::AlignVCenter);
    auto* mode = make<QLabel>("label_Mode", QT_TR_NOOP("Mode :"), QT_TR_NOOP("Mode          :"));

    mode_group_ = new QButtonGroup(this);
    mode_group_->setObjectName(QStringLiteral("buttonGroup_Mode"));
    mode_group_->addButton(make<QRadioButton>("radioButton_XorY", QT_TR_NOOP("X or Y")), ModeXorY);
    mode_group_->addButton(make<QRadioButton>("radioButton_XandY", QT_TR_NOOP("X and Y")),
                           ModeXandY);
    mode_group_->addButton(make<QRadioButton>("radioButton_Area", QT_TR_NOOP("Area")), ModeArea);
    mode_group_->button(ModeXorY)->setChecked(true);

    auto* ok = make<QPushButton>("pushButton_Ok", QT_TR_NOOP("Ok"));
    auto* apply = make<QPushButton>("pushButton_Apply", QT_TR_NOOP("Apply"));
    auto* close = make<QPushButton>("pushButton_Close", QT_TR_NOOP("Close"));

    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_MouseTracking);

    QList<QLabel*> fixed = {separate, mode};
    QList<QHBoxLayout*> field_rows;
    for (int row = 0; row < fields_->size(); ++row) {
        wc::setSourceText(this, fields_->label(row), rows[row].label, kLaterLabels[row]);
        fixed.append(fields_->label(row));
        field_rows.append(new QHBoxLayout);
        field_rows.back()->addWidget(fields_->label(row));
        field_rows.back()->addWidget(fields_->lineEdit(row));
        field_rows.back()->addWidget(fields_->unitLabel(row));
    }
    for (QLabel* label : fixed) {
        label->setFixedWidth(kLabelWidth);
        // A longer label wraps inside its 125 pixels rather than being cut off.
        label->setWordWrap(true);
    }
    auto* separate_row = new QHBoxLayout;
    separate_row->addWidget(separate);
    separate_row->addWidget(combo_separate_);
    auto* mode_row = new QHBoxLayout;
    mode_row->addWidget(mode);
    for (QAbstractButton* button : mode_group_->buttons()) {
        mode_row->addWidget(button);
    }
    auto* button_row = new QHBoxLayout;
    button_row->addWidget(ok);
    button_row->addStretch();
    button_row->addWidget(apply);
    button_row->addStretch();
    button_row->addWidget(close);

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(field_rows[Accuracy]);
    layout->addLayout(separate_row);
    layout->addWidget(clean_holes);
    layout->addLayout(field_rows[MaxSize]);
    layout->addLayout(mode_row);
    layout->addLayout(button_row);

    // The field table commits each field on Return itself.
    connect(ok, &QPushButton::clicked, this, &Widget_Contourize::on_Ok_clicked);
    connect(apply, &QPushButton::clicked, this, &Widget_Contourize::on_Apply_clicked);
    connect(close, &QPushButton::clicked, this, &Widget_Contourize::on_Close_clicked);

    wc::setSourceText(this, this, QT_TR_NOOP("Contourize"));
}

void Widget_Contourize::Enter_Accuracy_Text() {
    WC_GUARDED({ fields_->commit(Accuracy); });
}

void Widget_Contourize::Enter_MaxSize_Text() {
    WC_GUARDED({ fields_->commit(MaxSize); });
}

void Widget_Contourize::on_Apply_clicked() {
    WC_GUARDED({
        if (!judge_Apply()) {
            return;
        }
        contourize_params params;
        fields_->fill(params);
        params.separate_to_islands = combo_separate_->currentIndex() == 0;
        params.mode = mode_group_->checkedId();
        LOG(INFO) << "contourize accuracy " << params.accuracy << " max size " << params.max_size
                  << " islands " << params.separate_to_islands << " mode " << params.mode;
        emit send_Contourize_Info(reinterpret_cast<QObject*>(&params));
    });
}

void Widget_Contourize::on_Ok_clicked() {
    // Closes even when Apply refused the form: kept on purpose.
    WC_GUARDED({
        on_Apply_clicked();
        close();
    });
}

void Widget_Contourize::on_Close_clicked() {
    WC_GUARDED({ close(); });
}

void Widget_Contourize::change_language() {
    WC_GUARDED({
        fields_->changeLanguage();
        wc::retranslate(this);
    });
}

void Widget_Contourize::change_unit() {
    WC_GUARDED({ fields_->changeUnit(); });
}

bool Widget_Contourize::judge_Apply() {
    return fields_->judge();
}

void Widget_Contourize::mouseMoveEvent(QMouseEvent* event) {
    WC_GUARDED({ fields_->commitPendingOnLeave(event->pos()); });
    QWidget::mouseMoveEvent(event);
}

template <class W>
W* Widget_Contourize::make(const char* name, const char* text, const char* later) {
    auto* widget = new W(this);
    widget->setObjectName(QLatin1String(name));
    wc::setSourceText(this, widget, text, later != nullptr ? later : text);
    return widget;
}
