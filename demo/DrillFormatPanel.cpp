#include "DrillFormatPanel.h"

#include <QComboBox>
#include <QDir>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QSpinBox>
#include <QTableWidget>
#include <QVBoxLayout>
#include <ctime>

#include "JobFromFolder.h"
#include "Korvo_API.h"

namespace {

enum Column { LayerColumn, FormatColumn, SourceColumn };

// The zeros a format leaves out, in the engine's words, and what an Excellon header calls them.
const char* const kZeros[][2] = {
    {"leading", "leading zeros left out (TZ)"},
    {"trailing", "trailing zeros left out (LZ)"},
    {"none", "decimal point in every number"},
};

std::map<std::string, std::string> attributesOf(const QString& job, const QString& step) {
    std::map<std::string, std::string> attributes;
    Korvo::API::get_step_attributes(job.toStdString(), step.toStdString(), attributes);
    return attributes;
}

// The file of `layer` in `folder`: layers are named after their files in lower case.
QString fileOf(const QString& folder, const QString& layer) {
    const QDir dir(folder);
    for (const QString& entry : dir.entryList(QDir::Files)) {
        if (entry.toLower() == layer) {
            return dir.filePath(entry);
        }
    }
    return {};
}

QStringList drillLayers(const QString& job) {
    std::vector<std::string> steps;
    std::vector<Korvo::API::layer_info> layers;
    Korvo::API::get_matrix(job.toStdString(), steps, layers);
    QStringList out;
    for (const Korvo::API::layer_info& l : layers) {
        if (l.type == "drill") {
            out << QString::fromStdString(l.name);
        }
    }
    return out;
}

}  // namespace

QStringList DrillFormatPanel::summary(const QString& job, const QString& step) {
    const std::map<std::string, std::string> attributes = attributesOf(job, step);
    QStringList lines;
    for (const QString& layer : drillLayers(job)) {
        const auto format = attributes.find(wcref::kDrillFormatKey + layer.toStdString());
        const auto source = attributes.find(wcref::kDrillFormatSourceKey + layer.toStdString());
        if (format == attributes.end()) {
            continue;
        }
        const QString how = source == attributes.end() ? tr("how is not known")
                                                       : QString::fromStdString(source->second);
        // A format the holes could not confirm is a guess the user has to look at.
        const bool unsure = how.contains(QLatin1String("not checked")) ||
                            how.contains(QLatin1String("not confirmed"));
        lines << (unsure ? tr("Warning: drill layer %1 read as %2 (%3)")
                         : tr("Drill layer %1 read as %2 (%3)"))
                     .arg(layer, QString::fromStdString(format->second), how);
    }
    return lines;
}

DrillFormatPanel::DrillFormatPanel(const QString& job, const QString& step, const QString& folder,
                                   QWidget* parent)
    : QDialog(parent), job_(job), step_(step), folder_(folder) {
    setObjectName(QStringLiteral("DrillFormatPanel"));
    setWindowTitle(tr("Drill formats of %1").arg(job));
    table_ = new QTableWidget(0, 3, this);
    table_->setHorizontalHeaderLabels({tr("Layer"), tr("Read as"), tr("How it was chosen")});
    table_->horizontalHeader()->setStretchLastSection(true);
    table_->setSelectionBehavior(QAbstractItemView::SelectRows);
    table_->setSelectionMode(QAbstractItemView::SingleSelection);
    table_->setEditTriggers(QAbstractItemView::NoEditTriggers);
    units_ = new QComboBox(this);
    units_->setObjectName(QStringLiteral("Units"));
    units_->addItem(tr("inch"), QStringLiteral("inch"));
    units_->addItem(tr("mm"), QStringLiteral("mm"));
    zeros_ = new QComboBox(this);
    zeros_->setObjectName(QStringLiteral("Zeros"));
    for (const auto& z : kZeros) {
        zeros_->addItem(tr(z[1]), QString::fromLatin1(z[0]));
    }
    integers_ = new QSpinBox(this);
    integers_->setRange(1, 6);
    decimals_ = new QSpinBox(this);
    decimals_->setRange(0, 6);
    auto* read = new QPushButton(tr("Read again in this format"), this);
    read->setObjectName(QStringLiteral("ReadAgain"));
    auto* close = new QPushButton(tr("Close"), this);
    status_ = new QLabel(this);
    status_->setWordWrap(true);

    auto* form = new QFormLayout;
    form->addRow(tr("Unit:"), units_);
    form->addRow(tr("Zeros:"), zeros_);
    form->addRow(tr("Integer digits:"), integers_);
    form->addRow(tr("Decimal digits:"), decimals_);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(read);
    buttons->addWidget(close);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(table_);
    layout->addLayout(form);
    layout->addWidget(status_);
    layout->addLayout(buttons);

    connect(table_, &QTableWidget::currentCellChanged, this,
            [this](int row, int, int, int) { showRow(row); });
    connect(read, &QPushButton::clicked, this, &DrillFormatPanel::readAgain);
    connect(close, &QPushButton::clicked, this, &QDialog::close);
    reload();
    resize(720, 360);
}

void DrillFormatPanel::reload() {
    const int current = std::max(0, table_->currentRow());
    const std::map<std::string, std::string> attributes = attributesOf(job_, step_);
    const QStringList layers = drillLayers(job_);
    table_->setRowCount(layers.size());
    for (int row = 0; row < layers.size(); ++row) {
        const std::string name = layers[row].toStdString();
        const auto text = [&attributes](const std::string& key) {
            const auto found = attributes.find(key);
            return found == attributes.end() ? QString() : QString::fromStdString(found->second);
        };
        table_->setItem(row, LayerColumn, new QTableWidgetItem(layers[row]));
        table_->setItem(row, FormatColumn,
                        new QTableWidgetItem(text(wcref::kDrillFormatKey + name)));
        table_->setItem(row, SourceColumn,
                        new QTableWidgetItem(text(wcref::kDrillFormatSourceKey + name)));
    }
    table_->resizeColumnsToContents();
    if (!layers.isEmpty()) {
        table_->setCurrentCell(std::min(current, layers.size() - 1), 0);
    }
}

void DrillFormatPanel::showRow(int row) {
    if (row < 0 || row >= table_->rowCount()) {
        return;
    }
    // The controls start from the engine's own reading of the file.
    const QString path = fileOf(folder_, table_->item(row, LayerColumn)->text());
    std::string format;
    std::string message;
    Korvo::API::file_Parameters parameters;
    if (path.isEmpty() ||
        !Korvo::API::file_identify(path.toStdString(), format, parameters, message)) {
        status_->setText(tr("The file of layer %1 is not in %2.")
                             .arg(table_->item(row, LayerColumn)->text(), folder_));
        return;
    }
    units_->setCurrentIndex(
        std::max(0, units_->findData(QString::fromStdString(parameters.units))));
    zeros_->setCurrentIndex(
        std::max(0, zeros_->findData(QString::fromStdString(parameters.zeros))));
    integers_->setValue(parameters.integer_digits);
    decimals_->setValue(parameters.decimal_digits);
    status_->setText(QString::fromStdString(path.toStdString()));
}

bool DrillFormatPanel::readAgain() {
    const int row = table_->currentRow();
    if (row < 0) {
        status_->setText(tr("Pick a drill layer first."));
        return false;
    }
    const QString layer = table_->item(row, LayerColumn)->text();
    const QString path = fileOf(folder_, layer);
    std::string format;
    std::string message;
    Korvo::API::file_Parameters parameters;
    if (path.isEmpty() ||
        !Korvo::API::file_identify(path.toStdString(), format, parameters, message)) {
        status_->setText(tr("The file of layer %1 is not in %2.").arg(layer, folder_));
        return false;
    }
    parameters.units = units_->currentData().toString().toStdString();
    parameters.zeros = zeros_->currentData().toString().toStdString();
    parameters.integer_digits = integers_->value();
    parameters.decimal_digits = decimals_->value();
    parameters.format_source = "set by the user";
    std::time_t started = 0;
    std::time_t finished = 0;
    std::map<int, int> tools;
    if (!Korvo::API::file_translate(job_.toStdString(), step_.toStdString(), layer.toStdString(),
                                    path.toStdString(), parameters, started, finished, tools)) {
        status_->setText(tr("Layer %1 could not be read again (see the log).").arg(layer));
        return false;
    }
    reload();
    const QStringList lines = summary(job_, step_).filter(layer + ' ');
    const QString line = lines.isEmpty() ? tr("Layer %1 read again").arg(layer) : lines.front();
    status_->setText(line);
    emit layerReread(layer, line);
    return true;
}
