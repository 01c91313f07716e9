#include "CheckResultBrowserWindow.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QPushButton>
#include <QTableWidget>
#include <QVBoxLayout>

#include "CheckResultBrowser.h"
#include "Korvo_API.h"

namespace wcref {

CheckResultBrowserWindow::CheckResultBrowserWindow(QWidget* parent)
    : CheckResultBrowser(parent, Qt::Window) {
    setObjectName(QStringLiteral("checkResultBrowser"));
    setWindowTitle(tr("Stored checks"));
    table_ = new QTableWidget(0, 6, this);
    table_->setObjectName(QStringLiteral("tableWidget_Checks"));
    table_->setHorizontalHeaderLabels(
        {tr("Id"), tr("Kind"), tr("Job"), tr("Step"), tr("Time"), tr("Description")});
    table_->setSelectionBehavior(QAbstractItemView::SelectRows);
    table_->setSelectionMode(QAbstractItemView::SingleSelection);
    table_->setEditTriggers(QAbstractItemView::NoEditTriggers);
    table_->horizontalHeader()->setStretchLastSection(true);
    table_->verticalHeader()->hide();

    load_ = new QPushButton(tr("Load"), this);
    load_->setObjectName(QStringLiteral("pushButton_Load"));
    load_result_ = new QPushButton(tr("Load result"), this);
    load_result_->setObjectName(QStringLiteral("pushButton_LoadResult"));
    auto* refresh = new QPushButton(tr("Refresh"), this);
    refresh->setObjectName(QStringLiteral("pushButton_Refresh"));
    auto* close = new QPushButton(tr("Close"), this);
    close->setObjectName(QStringLiteral("pushButton_Close"));

    auto* buttons = new QHBoxLayout;
    buttons->addWidget(load_);
    buttons->addWidget(load_result_);
    buttons->addWidget(refresh);
    buttons->addStretch();
    buttons->addWidget(close);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(table_);
    layout->addLayout(buttons);
    resize(760, 320);

    connect(load_, &QPushButton::clicked, this, &CheckResultBrowserWindow::loadChosen);
    connect(load_result_, &QPushButton::clicked, this, &CheckResultBrowserWindow::loadChosenResult);
    connect(refresh, &QPushButton::clicked, this, &CheckResultBrowserWindow::refresh);
    connect(close, &QPushButton::clicked, this, &QWidget::close);
    connect(table_, &QTableWidget::cellDoubleClicked, this,
            [this](int row, int) { emit send_load_index(row); });
}

void CheckResultBrowserWindow::showEvent(QShowEvent* event) {
    refresh();
    QWidget::showEvent(event);
}

void CheckResultBrowserWindow::refresh() {
    const auto master = Korvo::API::getCheckResultMaster();
    table_->setRowCount(static_cast<int>(master.size()));
    int row = 0;
    for (const auto& [id, fields] : master) {
        table_->setItem(row, 0, new QTableWidgetItem(QString::number(id)));
        for (size_t column = 0; column < fields.size() && column < 5; ++column) {
            table_->setItem(row, static_cast<int>(column) + 1,
                            new QTableWidgetItem(QString::fromStdString(fields[column])));
        }
        ++row;
    }
    table_->resizeColumnsToContents();
    if (row > 0 && table_->currentRow() < 0) {
        table_->selectRow(row - 1);
    }
}

int CheckResultBrowserWindow::chosenRow() const {
    const int row = table_->currentRow();
    return row >= 0 && table_->item(row, 0) != nullptr ? row : -1;
}

void CheckResultBrowserWindow::loadChosen() {
    const int row = chosenRow();
    if (row < 0) {
        return;
    }
    QString id = table_->item(row, 0)->text();
    emit send_check_id_text(id);
}

void CheckResultBrowserWindow::loadChosenResult() {
    const int row = chosenRow();
    if (row < 0) {
        return;
    }
    QString key = QStringLiteral("tq") + table_->item(row, 0)->text();
    emit send_tq_check_id_text(key);
}

}  // namespace wcref

namespace Quorin {
namespace DBS_API {

CheckResultBrowser* createCheckResultBrowser(QWidget* parent) {
    return new wcref::CheckResultBrowserWindow(parent);
}

}  // namespace DBS_API
}  // namespace Quorin
