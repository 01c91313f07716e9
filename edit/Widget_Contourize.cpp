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
#include <QRegExpValidator>
#include <QVBoxLayout>

#include "Korvo_UIAPI.h"
#include "edit/contourize_params.h"
#include "frame/ExceptionGuard.h"
#include "frame/UnitChange.h"
#include "frame/Validators.h"

namespace {

// Defaults and limits in mil.
constexpr double kAccuracyDefault = 0.25;
constexpr double kAccuracyLimit = 2.0;
constexpr double kMaxSizeDefault = 3.0;
constexpr double kMaxSizeLimit = 8000.0;
constexpr int kLabelWidth = 125;

enum Mode { ModeXorY = 1, ModeXandY = 2, ModeArea = 3 };

}  // namespace

Widget_Contourize::Widget_Contourize(QWidget* parent)
    : QWidget(parent, Qt::Window), handle_(parent) {
    accuracy_.last_committed = QString();
    max_size_.last_committed = QString();
    setWindowFlags(Qt::WindowFlags(0x8001003));
    initContourize();
}

void Widget_Contourize::initContourize() {
    QRegExpValidator* float_validator = wc::makeFloatValidator(this);
    wc::makeNameValidator(this)->setObjectName(QStringLiteral("nameValidator"));
    wc::makeNoCjkValidator(this)->setObjectName(QStringLiteral("noCjkValidator"));

    const QString unit = tr(Korvo::UIAPI::getUnitStringType(handle_, 1).c_str());

    label_accuracy_ = makeLabel(QStringLiteral("label_Accuracy"), tr("Accuracy :"));
    accuracy_.edit =
        new QLineEdit(Korvo::UIAPI::getUnitJudgeString(handle_, kAccuracyDefault, 2), this);
    accuracy_.edit->setObjectName(QStringLiteral("lineEdit_Accuracy"));
    accuracy_.engine_name = QStringLiteral("accuracy");
    accuracy_.upper_mil = kAccuracyLimit;
    accuracy_.reset_text = QStringLiteral("0.25");
    unit_accuracy_ = new QLabel(unit, this);
    unit_accuracy_->setObjectName(QStringLiteral("label_AccuracyUnit"));

    label_clean_holes_ = new QLabel(tr("     Clean Holes"), this);
    label_clean_holes_->setObjectName(QStringLiteral("label_CleanHoles"));
    label_clean_holes_->setAlignment(Qt::AlignHCenter | Qt::AlignVCenter);

    label_max_size_ = makeLabel(QStringLiteral("label_MaxSize"), tr("Max Size :"));
    max_size_.edit =
        new QLineEdit(Korvo::UIAPI::getUnitJudgeString(handle_, kMaxSizeDefault, 2), this);
    max_size_.edit->setObjectName(QStringLiteral("lineEdit_MaxSize"));
    max_size_.engine_name = QStringLiteral("clean_hole_size");
    max_size_.upper_mil = kMaxSizeLimit;
    max_size_.reset_text = QStringLiteral("3");
    unit_max_size_ = new QLabel(unit, this);
    unit_max_size_->setObjectName(QStringLiteral("label_MaxSizeUnit"));

    label_separate_ =
        makeLabel(QStringLiteral("label_SeparateToIslands"), tr("Separate to Islands :"));
    combo_separate_ = new QComboBox(this);
    combo_separate_->setObjectName(QStringLiteral("comboBox_SeparateToIslands"));
    combo_separate_->addItem(tr("Yes"));
    combo_separate_->addItem(tr("No"));
    combo_separate_->setCurrentIndex(0);

    label_mode_ = makeLabel(QStringLiteral("label_Mode"), tr("Mode :"));
    radio_x_or_y_ = new QRadioButton(tr("X or Y"), this);
    radio_x_or_y_->setObjectName(QStringLiteral("radioButton_XorY"));
    radio_x_and_y_ = new QRadioButton(tr("X and Y"), this);
    radio_x_and_y_->setObjectName(QStringLiteral("radioButton_XandY"));
    radio_area_ = new QRadioButton(tr("Area"), this);
    radio_area_->setObjectName(QStringLiteral("radioButton_Area"));
    mode_group_ = new QButtonGroup(this);
    mode_group_->setObjectName(QStringLiteral("buttonGroup_Mode"));
    mode_group_->addButton(radio_x_or_y_, ModeXorY);
    mode_group_->addButton(radio_x_and_y_, ModeXandY);
    mode_group_->addButton(radio_area_, ModeArea);
    radio_x_or_y_->setChecked(true);

    button_ok_ = new QPushButton(tr("Ok"), this);
    button_ok_->setObjectName(QStringLiteral("pushButton_Ok"));
    button_apply_ = new QPushButton(tr("Apply"), this);
    button_apply_->setObjectName(QStringLiteral("pushButton_Apply"));
    button_close_ = new QPushButton(tr("Close"), this);
    button_close_->setObjectName(QStringLiteral("pushButton_Close"));

    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_MouseTracking);
    accuracy_.edit->setValidator(float_validator);
    max_size_.edit->setValidator(float_validator);

    auto* accuracy_row = new QHBoxLayout;
    accuracy_row->addWidget(label_accuracy_);
    accuracy_row->addWidget(accuracy_.edit);
    accuracy_row->addWidget(unit_accuracy_);
    auto* separate_row = new QHBoxLayout;
    separate_row->addWidget(label_separate_);
    separate_row->addWidget(combo_separate_);
    auto* max_size_row = new QHBoxLayout;
    max_size_row->addWidget(label_max_size_);
    max_size_row->addWidget(max_size_.edit);
    max_size_row->addWidget(unit_max_size_);
    auto* mode_row = new QHBoxLayout;
    mode_row->addWidget(label_mode_);
    mode_row->addWidget(radio_x_or_y_);
    mode_row->addWidget(radio_x_and_y_);
    mode_row->addWidget(radio_area_);
    auto* button_row = new QHBoxLayout;
    button_row->addWidget(button_ok_);
    button_row->addStretch();
    button_row->addWidget(button_apply_);
    button_row->addStretch();
    button_row->addWidget(button_close_);

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(accuracy_row);
    layout->addLayout(separate_row);
    layout->addWidget(label_clean_holes_);
    layout->addLayout(max_size_row);
    layout->addLayout(mode_row);
    layout->addLayout(button_row);

    connect(button_ok_, SIGNAL(clicked()), this, SLOT(on_Ok_clicked()));
    connect(button_apply_, SIGNAL(clicked()), this, SLOT(on_Apply_clicked()));
    connect(button_close_, SIGNAL(clicked()), this, SLOT(on_Close_clicked()));
    connect(accuracy_.edit, SIGNAL(returnPressed()), this, SLOT(Enter_Accuracy_Text()));
    connect(max_size_.edit, SIGNAL(returnPressed()), this, SLOT(Enter_MaxSize_Text()));

    setWindowTitle(tr("Contourize"));
}

void Widget_Contourize::Enter_Accuracy_Text() {
    WC_GUARDED({ wc::commitField(this, handle_, accuracy_); });
}

void Widget_Contourize::Enter_MaxSize_Text() {
    WC_GUARDED({ wc::commitField(this, handle_, max_size_); });
}

void Widget_Contourize::on_Apply_clicked() {
    WC_GUARDED({
        if (!judge_Apply()) {
            return;
        }
        contourize_params params;
        params.accuracy =
            Korvo::UIAPI::getUnitAPIData(handle_, 1, accuracy_.edit->text().toDouble());
        params.max_size =
            Korvo::UIAPI::getUnitAPIData(handle_, 1, max_size_.edit->text().toDouble());
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
        // These label texts are spaced differently from the first ones: both sets are kept.
        label_accuracy_->setText(tr("Accuracy           :"));
        label_separate_->setText(tr("Separate to Islands :"));
        label_clean_holes_->setText(tr("     Clean Holes"));
        label_max_size_->setText(tr("Max Size          :"));
        label_mode_->setText(tr("Mode          :"));
        combo_separate_->setItemText(0, tr("Yes"));
        combo_separate_->setItemText(1, tr("No"));
        radio_x_or_y_->setText(tr("X or Y"));
        radio_x_and_y_->setText(tr("X and Y"));
        radio_area_->setText(tr("Area"));
        button_ok_->setText(tr("Ok"));
        button_apply_->setText(tr("Apply"));
        button_close_->setText(tr("Close"));
        wc::refreshUnitLabels(handle_, {unit_accuracy_, unit_max_size_});
        setWindowTitle(tr("Contourize"));
    });
}

void Widget_Contourize::change_unit() {
    WC_GUARDED({
        wc::reexpressFields(handle_, {accuracy_.edit, max_size_.edit});
        wc::refreshUnitLabels(handle_, {unit_accuracy_, unit_max_size_});
    });
}

bool Widget_Contourize::judge_Apply() {
    return wc::judgeFields(this, handle_, numericFields());
}

void Widget_Contourize::mouseMoveEvent(QMouseEvent* event) {
    WC_GUARDED({
        wc::commitPendingOnLeave(event->pos(), accuracy_.edit->geometry(), numericFields(),
                                 [this](int field) {
                                     if (field == 0) {
                                         Enter_Accuracy_Text();
                                     } else {
                                         Enter_MaxSize_Text();
                                     }
                                 });
    });
    QWidget::mouseMoveEvent(event);
}

wc::NumericFields Widget_Contourize::numericFields() {
    return {&accuracy_, &max_size_};
}

QLabel* Widget_Contourize::makeLabel(const QString& name, const QString& text) {
    auto* label = new QLabel(text, this);
    label->setObjectName(name);
    label->setFixedWidth(kLabelWidth);
    // A longer label wraps inside its 125 pixels rather than being cut off.
    label->setWordWrap(true);
    return label;
}
