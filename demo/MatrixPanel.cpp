#include "MatrixPanel.h"

#include <glog/logging.h>

#include <QComboBox>
#include <QDropEvent>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QSpinBox>
#include <QTableWidget>
#include <QTimer>
#include <QVBoxLayout>
#include <functional>
#include <mutex>

#include "Korvo_API.h"
#include "Korvo_DB.h"
#include "PluginBus.h"
#include "QTpluginsManger4CAM.h"
#include "frame/PluginMessages.h"

using Korvo::API::layer_info;

namespace {

const QStringList kContexts = {"board", "misc"};
const QStringList kTypes = {"signal",       "power_ground", "mixed", "solder_mask", "silk_screen",
                            "solder_paste", "drill",        "rout",  "document"};
const QStringList kPolarities = {"positive", "negative"};
const QStringList kSides = {"top", "inner", "bottom", "none"};

const char* const kColumnNames[] = {"name", "context",     "type",      "polarity",
                                    "side", "drill_start", "drill_end", "row"};

bool isCopper(const std::string& type) {
    return type == "signal" || type == "power_ground" || type == "mixed";
}

// The error lines the engine logs during one call: its reason for refusing an edit.
class ErrorLines : public google::LogSink {
public:
    ErrorLines() { google::AddLogSink(this); }
    ~ErrorLines() override { google::RemoveLogSink(this); }
    using google::LogSink::send;
    void send(google::LogSeverity severity, const char*, const char*, int, const std::tm*,
              const char* message, size_t length) override {
        if (severity >= google::GLOG_ERROR) {
            std::lock_guard<std::mutex> guard(lock_);
            last_ = QString::fromUtf8(message, static_cast<int>(length));
        }
    }
    QString last() {
        std::lock_guard<std::mutex> guard(lock_);
        return last_;
    }

private:
    std::mutex lock_;
    QString last_;
};

// The table: rows are moved by dragging them; the drop asks the engine instead of moving items.
class MatrixTable : public QTableWidget {
public:
    MatrixTable(QWidget* parent, std::function<void(int, int)> moved)
        : QTableWidget(parent), moved_(std::move(moved)) {
        setSelectionBehavior(QAbstractItemView::SelectRows);
        setSelectionMode(QAbstractItemView::SingleSelection);
        setDragEnabled(true);
        setAcceptDrops(true);
        setDropIndicatorShown(true);
        setDragDropMode(QAbstractItemView::DragDrop);
        setDefaultDropAction(Qt::MoveAction);
    }

protected:
    void dropEvent(QDropEvent* event) override {
        if (event->source() != this) {
            event->ignore();
            return;
        }
        const int from = currentRow();
        int to = rowAt(event->pos().y());
        if (to < 0) {
            to = rowCount() - 1;
        }
        // The items stay where they are: the engine moves the layer and the table is re-read.
        event->setDropAction(Qt::IgnoreAction);
        event->accept();
        if (from >= 0 && to >= 0 && from != to) {
            moved_(from, to);
        }
    }

private:
    std::function<void(int, int)> moved_;
};

QComboBox* combo(QWidget* parent, const QStringList& items, const QString& name) {
    auto* box = new QComboBox(parent);
    box->addItems(items);
    box->setObjectName(name);
    return box;
}

}  // namespace

MatrixPanel::MatrixPanel(const QString& job, QWidget* parent) : QDialog(parent), job_(job) {
    setObjectName(QStringLiteral("MatrixPanel"));
    setWindowTitle(tr("Layer matrix of %1").arg(job));
    auto* layout = new QVBoxLayout(this);
    table_ = new MatrixTable(this, [this](int from, int to) { moveLayer(from, to); });
    table_->setObjectName(QStringLiteral("matrix"));
    table_->setColumnCount(ColumnCount);
    table_->setHorizontalHeaderLabels({tr("Name"), tr("Context"), tr("Type"), tr("Polarity"),
                                       tr("Side"), tr("Drill from"), tr("Drill to"), tr("Row")});
    table_->horizontalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
    table_->verticalHeader()->setVisible(false);
    layout->addWidget(table_);

    message_ = new QLabel(this);
    message_->setObjectName(QStringLiteral("message"));
    message_->setWordWrap(true);
    message_->setStyleSheet(QStringLiteral("color: #b00020"));
    layout->addWidget(message_);

    auto* buttons = new QHBoxLayout;
    up_ = new QPushButton(tr("Move up"), this);
    up_->setObjectName(QStringLiteral("up"));
    down_ = new QPushButton(tr("Move down"), this);
    down_->setObjectName(QStringLiteral("down"));
    auto* reread = new QPushButton(tr("Reload"), this);
    reread->setObjectName(QStringLiteral("reload"));
    auto* close = new QPushButton(tr("Close"), this);
    close->setObjectName(QStringLiteral("close"));
    buttons->addWidget(up_);
    buttons->addWidget(down_);
    buttons->addStretch(1);
    buttons->addWidget(reread);
    buttons->addWidget(close);
    layout->addLayout(buttons);

    connect(up_, &QPushButton::clicked, this, [this] {
        const int row = table_->currentRow();
        if (row > 0 && moveLayer(row, row - 1)) {
            table_->selectRow(row - 1);
        }
    });
    connect(down_, &QPushButton::clicked, this, [this] {
        const int row = table_->currentRow();
        if (row >= 0 && row + 1 < table_->rowCount() && moveLayer(row, row + 1)) {
            table_->selectRow(row + 1);
        }
    });
    connect(reread, &QPushButton::clicked, this, [this] {
        message_->clear();
        reload();
    });
    connect(close, &QPushButton::clicked, this, &QDialog::close);
    connect(table_, &QTableWidget::itemChanged, this, [this](QTableWidgetItem* item) {
        if (!showing_ && item->column() == Name) {
            commitName(item->row());
        }
    });

    // Another module changed the job: read it again once the message has been delivered.
    subscription_ = wcref::PluginBus::instance().subscribe([this](const PluginMetaData& m) {
        if (m.code == wc::code::RefreshMatrix &&
            m.values.value(QStringLiteral("Job"), job_).toString() == job_) {
            QTimer::singleShot(0, this, [this] { reload(); });
        }
    });
    reload();
    resize(900, 420);
}

MatrixPanel::~MatrixPanel() {
    wcref::PluginBus::instance().unsubscribe(subscription_);
}

QString MatrixPanel::message() const {
    return message_->text();
}

void MatrixPanel::reload() {
    std::vector<std::string> steps;
    matrix_.clear();
    const std::string answer = Korvo::API::get_matrix(job_.toStdString(), steps, matrix_);
    if (answer != "OK") {
        message_->setText(QString::fromStdString(answer));
    }
    const int count = static_cast<int>(matrix_.size());
    if (table_->rowCount() != count) {
        // New widgets only when the number of layers changed; otherwise they are refilled, so
        // that an edit's own combo box is never deleted while it reports the edit.
        showing_ = true;
        table_->setRowCount(count);
        for (int index = 0; index < count; ++index) {
            const auto name = [&](Column column) {
                return QString::fromLatin1(kColumnNames[column]) + "_" + QString::number(index);
            };
            auto* item = new QTableWidgetItem;
            item->setFlags(Qt::ItemIsSelectable | Qt::ItemIsEnabled | Qt::ItemIsEditable |
                           Qt::ItemIsDragEnabled);
            table_->setItem(index, Name, item);
            const std::pair<Column, const QStringList*> lists[] = {
                {Context, &kContexts}, {Type, &kTypes}, {Polarity, &kPolarities}, {Side, &kSides}};
            for (const auto& list : lists) {
                QComboBox* box = combo(table_, *list.second, name(list.first));
                const Column column = list.first;
                connect(box, &QComboBox::currentTextChanged, this,
                        [this, index, column](const QString& value) {
                            commitCombo(index, column, value);
                        });
                table_->setCellWidget(index, column, box);
            }
            for (Column column : {DrillStart, DrillEnd}) {
                QComboBox* box = combo(table_, {}, name(column));
                connect(box, &QComboBox::currentTextChanged, this,
                        [this, index, column](const QString& value) {
                            commitCombo(index, column, value);
                        });
                table_->setCellWidget(index, column, box);
            }
            auto* row = new QSpinBox(table_);
            row->setObjectName(name(Row));
            connect(row, &QSpinBox::editingFinished, this, [this, index, row] {
                if (!showing_ && index < static_cast<int>(matrix_.size()) &&
                    row->value() != index + 1) {
                    apply(index, matrix_[index], row->value());
                }
            });
            table_->setCellWidget(index, Row, row);
        }
        showing_ = false;
    }
    for (int index = 0; index < count; ++index) {
        showRow(index);
    }
}

void MatrixPanel::showRow(int index) {
    if (index < 0 || index >= static_cast<int>(matrix_.size())) {
        return;
    }
    const layer_info& l = matrix_[index];
    const bool was = showing_;
    showing_ = true;
    table_->item(index, Name)->setText(QString::fromStdString(l.name));
    const auto setBox = [&](Column column, const std::string& value) {
        auto* box = static_cast<QComboBox*>(table_->cellWidget(index, column));
        const QSignalBlocker blocker(box);
        const QString text = QString::fromStdString(value);
        if (box->findText(text) < 0) {
            box->addItem(text);  // a value the lists do not know is shown as the engine has it
        }
        box->setCurrentText(text);
    };
    setBox(Context, l.context);
    setBox(Type, l.type);
    setBox(Polarity, l.polarity);
    setBox(Side, l.side);
    // A drill span runs between copper layers; other layers have none.
    QStringList copper{QString()};
    for (const layer_info& other : matrix_) {
        if (isCopper(other.type)) {
            copper << QString::fromStdString(other.name);
        }
    }
    for (Column column : {DrillStart, DrillEnd}) {
        auto* box = static_cast<QComboBox*>(table_->cellWidget(index, column));
        {
            const QSignalBlocker blocker(box);
            box->clear();
            box->addItems(copper);
        }
        setBox(column, column == DrillStart ? l.drill_start : l.drill_end);
        box->setEnabled(l.type == "drill" || !l.drill_start.empty() || !l.drill_end.empty());
    }
    auto* row = static_cast<QSpinBox*>(table_->cellWidget(index, Row));
    {
        const QSignalBlocker blocker(row);
        row->setRange(1, std::max(1, static_cast<int>(matrix_.size())));
        row->setValue(l.row);
    }
    showing_ = was;
}

layer_info MatrixPanel::retyped(layer_info layer, const std::string& type,
                                const std::vector<layer_info>& matrix) {
    layer.type = type;
    if (isCopper(type)) {
        if (layer.side != "top" && layer.side != "inner" && layer.side != "bottom") {
            layer.side = "inner";
        }
    } else if (type == "solder_mask" || type == "silk_screen" || type == "solder_paste") {
        if (layer.side != "top" && layer.side != "bottom") {
            layer.side = "top";
        }
    } else if (type != "document") {
        layer.side = "none";
    }
    layer.context = type == "document" ? "misc" : "board";
    if (type == "drill") {
        if (layer.drill_start.empty() || layer.drill_end.empty()) {
            std::string first;
            std::string last;
            for (const layer_info& l : matrix) {
                if (isCopper(l.type) && l.name != layer.name) {
                    first = first.empty() ? l.name : first;
                    last = l.name;
                }
            }
            layer.drill_start = first;
            layer.drill_end = last;
        }
    } else {
        layer.drill_start.clear();
        layer.drill_end.clear();
    }
    return layer;
}

void MatrixPanel::commitCombo(int index, Column column, const QString& value) {
    if (showing_ || index >= static_cast<int>(matrix_.size())) {
        return;
    }
    layer_info wanted = matrix_[index];
    const std::string text = value.toStdString();
    switch (column) {
        case Context:
            wanted.context = text;
            break;
        case Type:
            wanted = retyped(wanted, text, matrix_);
            break;
        case Polarity:
            wanted.polarity = text;
            break;
        case Side:
            wanted.side = text;
            break;
        case DrillStart:
            wanted.drill_start = text;
            break;
        case DrillEnd:
            wanted.drill_end = text;
            break;
        default:
            return;
    }
    apply(index, wanted, wanted.row);
}

void MatrixPanel::commitName(int index) {
    if (index >= static_cast<int>(matrix_.size())) {
        return;
    }
    layer_info wanted = matrix_[index];
    wanted.name = table_->item(index, Name)->text().trimmed().toLower().toStdString();
    if (wanted.name != matrix_[index].name) {
        apply(index, wanted, wanted.row);
    }
}

bool MatrixPanel::apply(int index, const layer_info& wanted, int new_row) {
    const layer_info& current = matrix_[index];
    const std::string job = job_.toStdString();
    if (Korvo::DB::get_SaveFlag()) {
        Korvo::DB::change_matrix_db_save(job, current.row, new_row, current.name, wanted);
    }
    ErrorLines errors;
    if (!Korvo::API::change_matrix(job, current.row, new_row, current.name, wanted)) {
        refused(index, errors.last());
        return false;
    }
    accepted();
    return true;
}

bool MatrixPanel::moveLayer(int from, int to) {
    if (from < 0 || from >= static_cast<int>(matrix_.size())) {
        return false;
    }
    const std::string job = job_.toStdString();
    if (Korvo::DB::get_SaveFlag()) {
        Korvo::DB::move_layer_poi_db_save(job, from + 1, to + 1);
    }
    ErrorLines errors;
    if (!Korvo::API::move_layer_poi(job, from + 1, to + 1)) {
        refused(from, errors.last());
        return false;
    }
    accepted();
    return true;
}

void MatrixPanel::refused(int index, const QString& why) {
    message_->setText(why.isEmpty() ? tr("The engine refused the change.") : why);
    // The row shows what the engine has again.
    std::vector<std::string> steps;
    std::vector<layer_info> matrix;
    Korvo::API::get_matrix(job_.toStdString(), steps, matrix);
    if (matrix.size() == matrix_.size()) {
        matrix_ = matrix;
        showRow(index);
    } else {
        reload();
    }
}

void MatrixPanel::accepted() {
    message_->clear();
    reload();
    PluginMetaData message;
    message.sender = wc::module::Matrix;
    message.receiver = wc::module::Matrix;
    message.code = wc::code::RefreshMatrix;
    message.values.insert(QStringLiteral("DstType"), QStringLiteral("Matrix"));
    QTpluginsManger4CAM::instance()->Ze_UpdateJob(job_, message);
    emit matrixChanged(job_);
}
