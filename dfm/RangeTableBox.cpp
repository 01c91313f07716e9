#include "RangeTableBox.h"

#include <QBrush>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QPushButton>
#include <QTableWidget>
#include <QVBoxLayout>

#include "ZeLineEdit.h"
#include "frame/DialogTexts.h"

namespace wc {

RangeTableBox::RangeTableBox(QWidget* dialog, const QString& key, const QString& button_key,
                             const char* title)
    : QObject(dialog), dialog_(dialog) {
    box_ = new QGroupBox(dialog);
    box_->setObjectName(QStringLiteral("groupBox_") + key);
    setSourceText(dialog, box_, title);
    table_ = new QTableWidget(0, 2, box_);
    table_->setObjectName(QStringLiteral("tableWidget_") + key);
    table_->horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
    table_->setMinimumHeight(120);
    setSourceItems(dialog, table_,
                   {QT_TRANSLATE_NOOP("Widget_SolderMaskOpt", "Range"),
                    QT_TRANSLATE_NOOP("Widget_SolderMaskOpt", "Value")});
    add_ = new QPushButton(box_);
    add_->setObjectName(QStringLiteral("pushButton_Add%1Row").arg(button_key));
    setSourceText(dialog, add_, QT_TRANSLATE_NOOP("Widget_SolderMaskOpt", "Add"));
    remove_ = new QPushButton(box_);
    remove_->setObjectName(QStringLiteral("pushButton_Delete%1Row").arg(button_key));
    setSourceText(dialog, remove_, QT_TRANSLATE_NOOP("Widget_SolderMaskOpt", "Delete"));
    // The buttons must not take the focus from the cell whose row is to be deleted.
    add_->setFocusPolicy(Qt::NoFocus);
    remove_->setFocusPolicy(Qt::NoFocus);
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(add_);
    buttons->addWidget(remove_);
    buttons->addStretch();
    auto* layout = new QVBoxLayout(box_);
    layout->addWidget(table_);
    layout->addLayout(buttons);
}

void RangeTableBox::setItem(int row, int column, const QString& text) {
    auto* item = new QTableWidgetItem(text);
    item->setFlags(Qt::ItemIsEnabled);
    // The editor paints the text; the item only carries it.
    item->setForeground(QBrush(Qt::transparent));
    table_->setItem(row, column, item);
    auto* edit = new Korvo::UIAPI::ZeLineEdit(text, Korvo::UIAPI::ZeE_Float, dialog_);
    edit->setObjectName(
        table_->objectName().replace(QStringLiteral("tableWidget_"), QStringLiteral("lineEdit_")) +
        QStringLiteral("Cell"));
    edit->setAutoFillBackground(true);
    table_->setCellWidget(row, column, edit);
    // The item follows the editor wherever rows above it were inserted or removed.
    connect(edit, &QLineEdit::textChanged, this, [this, edit](const QString& shown) {
        for (int r = 0; r < table_->rowCount(); ++r) {
            for (int c = 0; c < table_->columnCount(); ++c) {
                if (table_->cellWidget(r, c) == edit && table_->item(r, c) != nullptr) {
                    table_->item(r, c)->setText(shown);
                    return;
                }
            }
        }
    });
    connect(edit, &QLineEdit::editingFinished, this, &RangeTableBox::changed);
}

void RangeTableBox::setRows(const RangeRows& rows) {
    table_->setRowCount(0);
    table_->setColumnCount(2);
    table_->setRowCount(rows.size());
    for (int row = 0; row < rows.size(); ++row) {
        setItem(row, 0, rows[row].first);
        setItem(row, 1, rows[row].second);
    }
    emit changed();
}

RangeRows RangeTableBox::rows() const {
    auto cell = [this](int row, int column) {
        if (auto* edit = qobject_cast<const QLineEdit*>(table_->cellWidget(row, column))) {
            return edit->text();
        }
        const QTableWidgetItem* item = table_->item(row, column);
        return item != nullptr ? item->text() : QString();
    };
    RangeRows rows;
    for (int row = 0; row < table_->rowCount(); ++row) {
        rows.append({cell(row, 0), cell(row, 1)});
    }
    return rows;
}

void RangeTableBox::addRow() {
    const int row = table_->rowCount();
    table_->insertRow(row);
    setItem(row, 0, QString());
    setItem(row, 1, QString());
    table_->cellWidget(row, 0)->setFocus();
    emit changed();
}

void RangeTableBox::deleteRow() {
    if (table_->rowCount() == 0) {
        return;
    }
    int target = table_->currentRow();
    for (int row = 0; row < table_->rowCount(); ++row) {
        for (int column = 0; column < table_->columnCount(); ++column) {
            QWidget* cell = table_->cellWidget(row, column);
            if (cell != nullptr && cell->hasFocus()) {
                target = row;
            }
        }
    }
    if (target < 0 || target >= table_->rowCount()) {
        target = table_->rowCount() - 1;
    }
    table_->removeRow(target);
    emit changed();
}

void RangeTableBox::restoreEditors() {
    RangeRows rows;
    for (int row = 0; row < table_->rowCount(); ++row) {
        const QTableWidgetItem* range = table_->item(row, 0);
        const QTableWidgetItem* value = table_->item(row, 1);
        rows.append({range != nullptr ? range->text() : QString(),
                     value != nullptr ? value->text() : QString()});
    }
    setRows(rows);
}

QList<Korvo::UIAPI::ZeLineEdit*> RangeTableBox::cells() const {
    QList<Korvo::UIAPI::ZeLineEdit*> cells;
    for (int row = 0; row < table_->rowCount(); ++row) {
        for (int column = 0; column < table_->columnCount(); ++column) {
            if (auto* edit =
                    qobject_cast<Korvo::UIAPI::ZeLineEdit*>(table_->cellWidget(row, column))) {
                cells.append(edit);
            }
        }
    }
    return cells;
}

}  // namespace wc
