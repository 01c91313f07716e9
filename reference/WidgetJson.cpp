// Widget values to and from one JSON object. Each widget is stored under its object name, or
// "#<position in the list>" when it has none.

#include <glog/logging.h>
#include <QAbstractButton>
#include <QButtonGroup>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QGroupBox>
#include <QJsonArray>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QSpinBox>
#include <QTableWidget>
#include <cmath>

#include "Korvo_UIAPI.h"

namespace {

QString keyOf(const QObject* object, int position) {
    const QString name = object->objectName();
    return name.isEmpty() ? QStringLiteral("#%1").arg(position) : name;
}

QJsonArray tableToJson(const QTableWidget* table) {
    QJsonArray rows;
    for (int row = 0; row < table->rowCount(); ++row) {
        QJsonArray cells;
        for (int column = 0; column < table->columnCount(); ++column) {
            const QTableWidgetItem* item = table->item(row, column);
            cells.append(item != nullptr ? item->text() : QString());
        }
        rows.append(cells);
    }
    return rows;
}

// The table is rebuilt only when every row is an array of strings.
bool jsonToTable(const QJsonValue& value, QTableWidget* table) {
    if (!value.isArray())
        return false;
    const QJsonArray rows = value.toArray();
    int columns = table->columnCount();
    for (const QJsonValue& row : rows) {
        if (!row.isArray())
            return false;
        for (const QJsonValue& cell : row.toArray()) {
            if (!cell.isString())
                return false;
        }
        columns = std::max(columns, static_cast<int>(row.toArray().size()));
    }
    table->setRowCount(0);
    table->setColumnCount(columns);
    table->setRowCount(rows.size());
    for (int row = 0; row < rows.size(); ++row) {
        const QJsonArray cells = rows.at(row).toArray();
        for (int column = 0; column < cells.size(); ++column)
            table->setItem(row, column, new QTableWidgetItem(cells.at(column).toString()));
    }
    return true;
}

bool isInteger(const QJsonValue& value) {
    return value.isDouble() && std::floor(value.toDouble()) == value.toDouble() &&
           std::fabs(value.toDouble()) <= 2147483647.0;
}

QJsonValue valueOf(const QObject* object) {
    if (auto* group = qobject_cast<const QButtonGroup*>(object))
        return group->checkedId();
    if (auto* edit = qobject_cast<const QLineEdit*>(object))
        return edit->text();
    if (auto* edit = qobject_cast<const QPlainTextEdit*>(object))
        return edit->toPlainText();
    if (auto* label = qobject_cast<const QLabel*>(object))
        return label->text();
    if (auto* button = qobject_cast<const QAbstractButton*>(object)) {
        if (button->isCheckable())
            return button->isChecked();
    }
    if (auto* combo = qobject_cast<const QComboBox*>(object))
        return combo->currentIndex();
    if (auto* spin = qobject_cast<const QSpinBox*>(object))
        return spin->value();
    if (auto* spin = qobject_cast<const QDoubleSpinBox*>(object))
        return spin->value();
    if (auto* table = qobject_cast<const QTableWidget*>(object))
        return tableToJson(table);
    if (auto* group = qobject_cast<const QGroupBox*>(object)) {
        if (group->isCheckable())
            return group->isChecked();
    }
    return QJsonValue(QJsonValue::Undefined);
}

// False when the value's JSON type does not fit the widget; the widget is then left alone.
bool applyValue(const QJsonValue& value, QObject* object) {
    if (auto* group = qobject_cast<QButtonGroup*>(object)) {
        if (!isInteger(value))
            return false;
        QAbstractButton* button = group->button(value.toInt());
        if (button == nullptr)
            return value.toInt() == -1 && group->checkedId() == -1;
        button->setChecked(true);
        return true;
    }
    if (auto* edit = qobject_cast<QLineEdit*>(object)) {
        if (!value.isString())
            return false;
        edit->setText(value.toString());
        return true;
    }
    if (auto* edit = qobject_cast<QPlainTextEdit*>(object)) {
        if (!value.isString())
            return false;
        edit->setPlainText(value.toString());
        return true;
    }
    if (auto* label = qobject_cast<QLabel*>(object)) {
        if (!value.isString())
            return false;
        label->setText(value.toString());
        return true;
    }
    if (auto* button = qobject_cast<QAbstractButton*>(object)) {
        if (!value.isBool() || !button->isCheckable())
            return false;
        button->setChecked(value.toBool());
        return true;
    }
    if (auto* combo = qobject_cast<QComboBox*>(object)) {
        if (!isInteger(value) || value.toInt() < -1 || value.toInt() >= combo->count())
            return false;
        combo->setCurrentIndex(value.toInt());
        return true;
    }
    if (auto* spin = qobject_cast<QSpinBox*>(object)) {
        if (!isInteger(value))
            return false;
        spin->setValue(value.toInt());
        return true;
    }
    if (auto* spin = qobject_cast<QDoubleSpinBox*>(object)) {
        if (!value.isDouble())
            return false;
        spin->setValue(value.toDouble());
        return true;
    }
    if (auto* table = qobject_cast<QTableWidget*>(object))
        return jsonToTable(value, table);
    if (auto* group = qobject_cast<QGroupBox*>(object)) {
        if (!value.isBool() || !group->isCheckable())
            return false;
        group->setChecked(value.toBool());
        return true;
    }
    return false;
}

}  // namespace

namespace Korvo {
namespace UIAPI {

void readListToJson(const QList<QObject*>& widgets, QJsonObject& object) {
    for (int position = 0; position < widgets.size(); ++position) {
        const QObject* widget = widgets.at(position);
        if (widget == nullptr)
            continue;
        const QJsonValue value = valueOf(widget);
        if (value.isUndefined()) {
            LOG(ERROR) << "no JSON form for " << widget->metaObject()->className() << " \""
                       << keyOf(widget, position).toStdString() << "\"";
            continue;
        }
        object.insert(keyOf(widget, position), value);
    }
}

void writeJsonToList(const QJsonObject& object, QList<QObject*>& widgets) {
    for (int position = 0; position < widgets.size(); ++position) {
        QObject* widget = widgets.at(position);
        if (widget == nullptr)
            continue;
        const QString key = keyOf(widget, position);
        const auto it = object.constFind(key);
        if (it == object.constEnd())
            continue;
        if (!applyValue(it.value(), widget))
            LOG(ERROR) << "value of \"" << key.toStdString() << "\" does not fit its "
                       << widget->metaObject()->className() << ", left as it was";
    }
}

}  // namespace UIAPI
}  // namespace Korvo
