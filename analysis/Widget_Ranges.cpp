#include "Widget_Ranges.h"

#include <glog/logging.h>

#include <QEvent>
#include <QGridLayout>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QRegExpValidator>
#include <QScrollArea>
#include <QVBoxLayout>
#include <algorithm>

#include "ZeLineEdit.h"
#include "frame/DialogTexts.h"
#include "frame/ExceptionGuard.h"

namespace {

using Korvo::UIAPI::ZeLineEdit;

const char* const kLevelPattern = "[1-9][0-9]{0,9}[.][0-9]{1,3}|[1-9][0-9]{0,9}|[0][.][0-9]{1,3}";
const char* const kRedStyle = "background-color:rgb(255,0,0);";
const char* const kYellowStyle = "background-color:rgb(255,255,0);";
// Three components in rgba(): kept as the system has always written it.
const char* const kGreenStyle = "background-color:rgba(0,255,0);";
const char* const kEmptiedText = "0.000";
constexpr int kWidth = 700;
constexpr int kHeight = 600;

}  // namespace

Widget_Ranges::Widget_Ranges(std::vector<Record>& records, QWidget* handle, QWidget* parent)
    : QWidget(parent, Qt::Window), handle_(handle), records_(records) {
    InitInterface();
}

Widget_Ranges::Widget_Ranges(QWidget* parent) : QWidget(parent, Qt::Window), handle_(parent) {
    InitInterface();
}

Widget_Ranges::Widget_Ranges(std::string key, std::string owner, QWidget* handle, QWidget* parent)
    : QWidget(parent, Qt::Window),
      handle_(handle),
      key_(QString::fromStdString(key)),
      owner_(QString::fromStdString(owner)) {
    Korvo::UIAPI::getRanges(key, records_);
    InitInterface();
}

Widget_Ranges::Widget_Ranges(QString key, std::vector<Record>& records, QWidget* handle,
                             QWidget* parent)
    : QWidget(parent, Qt::Window), handle_(handle), key_(std::move(key)), records_(records) {
    InitInterface();
}

void Widget_Ranges::InitInterface() {
    setWindowFlags(windowFlags() & ~Qt::WindowMaximizeButtonHint);
    installEventFilter(this);

    m_pScrollArea = new QScrollArea(this);
    m_pScrollArea->setObjectName(QStringLiteral("m_pScrollArea"));
    m_pScrollArea->setWidgetResizable(true);
    m_pRowsWidget = new QWidget(m_pScrollArea);
    m_pRowsWidget->setObjectName(QStringLiteral("m_pRowsWidget"));
    m_pGrid = new QGridLayout(m_pRowsWidget);
    m_pGrid->setAlignment(Qt::AlignTop);
    m_pScrollArea->setWidget(m_pRowsWidget);
    m_pClosePB = new QPushButton(this);
    m_pClosePB->setObjectName(QStringLiteral("m_pClosePB"));
    wc::setSourceText(this, m_pClosePB, QT_TR_NOOP("Close"));
    wc::setSourceText(this, this, QT_TR_NOOP("Ranges"));

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_pScrollArea);
    layout->addWidget(m_pClosePB, 0, Qt::AlignRight);

    InitDisnableditemmap();
    if (!records_.empty()) {
        GetListInfo();
    }
    change_language();
    connect(m_pClosePB, &QPushButton::clicked, this, &Widget_Ranges::on_m_pClosePB_clicked);

    resize(kWidth, kHeight);
    setFixedSize(width(), height());
}

// The owning dialog's name follows the title as it was given.
void Widget_Ranges::change_language() {
    wc::retranslate(this);
    if (!owner_.isEmpty()) {
        setWindowTitle(windowTitle() + QStringLiteral(" - ") + owner_);
    }
}

// Rows whose levels are not meant to be edited. Positions in the record order of the range store,
// not item values: the store's order is fixed.
void Widget_Ranges::InitDisnableditemmap() {
    disabled_items_ = {
        {QStringLiteral("DrillRanges"), {5, 6, 7, 8, 14, 15, 16, 17, 18, 19, 20, 21, 23, 24}},
        {QStringLiteral("SilkScreenRanges"), {19, 20, 21, 25, 26}},
        {QStringLiteral("SolderMaskRanges"),
         {4, 10, 11, 18, 19, 20, 21, 23, 27, 28, 44, 53, 54, 65, 67, 68}},
        {QStringLiteral("SignalLayerRanges"),
         {9, 10, 11, 16, 17, 18, 22, 34, 35, 44, 47, 49, 52, 59, 65, 67, 68, 69, 70}},
    };
}

void Widget_Ranges::GetListInfo() {
    const QList<int> disabled = disabled_items_.value(key_);
    const int unit = Korvo::UIAPI::getUnit(handle_);
    const auto field = [this, unit](double value, const QString& name, const char* style,
                                    QList<ZeLineEdit*>& list, LevelSlot slot) {
        auto* edit = new ZeLineEdit(Korvo::UIAPI::getUnitJudgeStringMetric(handle_, value),
                                    Korvo::UIAPI::ZeE_Float, m_pRowsWidget);
        edit->setTextUnit(unit);
        edit->setValidator(new QRegExpValidator(QRegExp(QString::fromLatin1(kLevelPattern)), edit));
        edit->setStatusTip(name);
        edit->installEventFilter(this);
        edit->setStyleSheet(QString::fromLatin1(style));
        connect(edit, &QLineEdit::editingFinished, this, slot);
        list.append(edit);
        return edit;
    };
    for (int row = 0; row < int(records_.size()); ++row) {
        const Record& record = records_[std::size_t(row)];
        const QString name = QString::fromStdString(record.name);
        auto* label = new QLabel(name, m_pRowsWidget);
        label->setObjectName(QStringLiteral("label_%1").arg(row));
        row_labels_.append(label);
        m_pGrid->addWidget(label, row, 0);
        ZeLineEdit* red = field(record.RedLv, name, kRedStyle, red_edits_,
                                &Widget_Ranges::on_redlvl_edit_Finished);
        ZeLineEdit* yellow = field(record.YellowLv, name, kYellowStyle, yellow_edits_,
                                   &Widget_Ranges::on_yellowlvl_edit_Finished);
        ZeLineEdit* green = field(record.GreenLv, name, kGreenStyle, green_edits_,
                                  &Widget_Ranges::on_greenlvl_edit_Finished);
        red->setObjectName(QStringLiteral("red_%1").arg(row));
        yellow->setObjectName(QStringLiteral("yellow_%1").arg(row));
        green->setObjectName(QStringLiteral("green_%1").arg(row));
        m_pGrid->addWidget(red, row, 1);
        m_pGrid->addWidget(yellow, row, 2);
        m_pGrid->addWidget(green, row, 3);
        if (disabled.contains(row)) {
            for (QWidget* w : {static_cast<QWidget*>(label), static_cast<QWidget*>(red),
                               static_cast<QWidget*>(yellow), static_cast<QWidget*>(green)}) {
                w->setEnabled(false);
            }
        }
    }
}

void Widget_Ranges::clearRows() {
    for (QList<ZeLineEdit*>* list : {&red_edits_, &yellow_edits_, &green_edits_}) {
        qDeleteAll(*list);
        list->clear();
    }
    qDeleteAll(row_labels_);
    row_labels_.clear();
}

void Widget_Ranges::updateRangeData(std::vector<Record>& records) {
    wc::guarded(this, "Widget_Ranges.cpp", __LINE__, [&] {
        records_ = records;
        clearRows();
        GetListInfo();
    });
}

void Widget_Ranges::change_units() {
    WC_GUARDED({
        changeLineEditValueByUnit(red_edits_);
        changeLineEditValueByUnit(yellow_edits_);
        changeLineEditValueByUnit(green_edits_);
    });
}

// Each field is re-expressed from the unit its text was written in, with the three decimals the
// level pattern allows.
void Widget_Ranges::changeLineEditValueByUnit(QList<ZeLineEdit*>& fields) {
    const int unit = Korvo::UIAPI::getUnit(handle_);
    for (ZeLineEdit* edit : fields) {
        const bool empty = edit->text().isEmpty();
        edit->changeunit(unit);
        if (!empty) {
            edit->setText(QString::number(edit->text().toDouble(), 'f', 3));
        }
    }
}

double Widget_Ranges::engineValue(const QString& text) const {
    return Korvo::UIAPI::getUnitAPIData(handle_, 1, text.toDouble());
}

// One row per signal: the first field (from the top) whose value differs from its record's level
// as shown is committed. A field compares through the shown text, so the rounding to three
// decimals never makes an untouched row look changed.
void Widget_Ranges::commitLevel(QList<ZeLineEdit*>& fields, double Record::*level,
                                const char* level_name) {
    for (int row = 0; row < fields.size() && row < int(records_.size()); ++row) {
        Record& record = records_[std::size_t(row)];
        const double typed = engineValue(fields[row]->text());
        const double shown =
            engineValue(Korvo::UIAPI::getUnitJudgeStringMetric(handle_, record.*level));
        if (typed == shown) {
            continue;
        }
        record.*level = typed;
        if (!Korvo::UIAPI::changeRangesValue(key_.toStdString(), record.name, level_name, typed)) {
            LOG(ERROR) << "range " << record.name << " " << level_name << " of "
                       << key_.toStdString() << " not saved";
            QMessageBox::warning(
                this, tr("Warning"),
                tr("The ranges could not be saved; the change holds until the program closes."));
        }
        return;
    }
}

void Widget_Ranges::on_redlvl_edit_Finished() {
    WC_GUARDED({ commitLevel(red_edits_, &Record::RedLv, "RedLv"); });
}

void Widget_Ranges::on_yellowlvl_edit_Finished() {
    WC_GUARDED({ commitLevel(yellow_edits_, &Record::YellowLv, "YellowLv"); });
}

void Widget_Ranges::on_greenlvl_edit_Finished() {
    WC_GUARDED({ commitLevel(green_edits_, &Record::GreenLv, "GreenLv"); });
}

void Widget_Ranges::on_m_pClosePB_clicked() {
    close();
}

bool Widget_Ranges::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::MouseButtonPress) {
        const auto in = [watched](const QList<ZeLineEdit*>& fields) {
            return std::any_of(fields.begin(), fields.end(),
                               [watched](const QObject* field) { return field == watched; });
        };
        if (watched == this || in(red_edits_) || in(yellow_edits_) || in(green_edits_)) {
            setLineEditValue(red_edits_);
            setLineEditValue(yellow_edits_);
            setLineEditValue(green_edits_);
        }
    }
    return QWidget::eventFilter(watched, event);
}

// A field the user emptied reads "0.000" again and gives up the focus (which commits it).
void Widget_Ranges::setLineEditValue(QList<ZeLineEdit*>& fields) {
    for (ZeLineEdit* edit : fields) {
        if (edit->isModified() && edit->text().isEmpty()) {
            edit->setText(QString::fromLatin1(kEmptiedText));
            edit->clearFocus();
        }
    }
}

Widget_Ranges* Widget_Ranges::create(const void* handle, const QString& key, const char* owner) {
    auto* host = static_cast<QWidget*>(const_cast<void*>(handle));
    return new Widget_Ranges(key.toStdString(), std::string(owner), host, host);
}
