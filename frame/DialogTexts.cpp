#include "DialogTexts.h"

#include <QAbstractButton>
#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QTabWidget>
#include <QTableWidget>
#include <QTreeWidget>
#include <algorithm>

#include "Translate.h"

namespace wc {
namespace {

const char* const kSourceProperty = "wcSourceText";
const char* const kToolTipProperty = "wcSourceToolTip";
const char* const kStatusTipProperty = "wcSourceStatusTip";
const char* const kItemsProperty = "wcSourceItems";
const char* const kArgumentsProperty = "wcSourceArguments";

void show(QWidget* dialog, QObject* object, const QString& source) {
    QString text = translateFor(dialog, source);
    for (const QString& argument : object->property(kArgumentsProperty).toStringList()) {
        text = text.arg(argument);
    }
    if (object == dialog) {
        dialog->setWindowTitle(text);
    } else if (auto* box = qobject_cast<QGroupBox*>(object)) {
        box->setTitle(text);
    } else if (auto* button = qobject_cast<QAbstractButton*>(object)) {
        button->setText(text);
    } else if (auto* label = qobject_cast<QLabel*>(object)) {
        label->setText(text);
    } else if (auto* action = qobject_cast<QAction*>(object)) {
        action->setText(text);
    } else if (auto* edit = qobject_cast<QLineEdit*>(object)) {
        edit->setPlaceholderText(text);
    }
}

void showTip(QWidget* dialog, QObject* object, const char* property, const QString& source) {
    const QString text = translateFor(dialog, source);
    const bool tool_tip = qstrcmp(property, kToolTipProperty) == 0;
    if (auto* widget = qobject_cast<QWidget*>(object)) {
        tool_tip ? widget->setToolTip(text) : widget->setStatusTip(text);
    } else if (auto* action = qobject_cast<QAction*>(object)) {
        tool_tip ? action->setToolTip(text) : action->setStatusTip(text);
    }
}

void showItems(QWidget* dialog, QWidget* widget, const QStringList& sources) {
    QStringList texts;
    for (const QString& source : sources) {
        texts.append(translateFor(dialog, source));
    }
    if (auto* combo = qobject_cast<QComboBox*>(widget)) {
        for (int index = 0; index < texts.size(); ++index) {
            if (index < combo->count()) {
                combo->setItemText(index, texts[index]);
            } else {
                combo->addItem(texts[index]);
            }
        }
    } else if (auto* list = qobject_cast<QListWidget*>(widget)) {
        while (list->count() < texts.size()) {
            list->addItem(QString());
        }
        for (int index = 0; index < texts.size(); ++index) {
            list->item(index)->setText(texts[index]);
        }
    } else if (auto* table = qobject_cast<QTableWidget*>(widget)) {
        table->setColumnCount(std::max(table->columnCount(), static_cast<int>(texts.size())));
        table->setHorizontalHeaderLabels(texts);
    } else if (auto* tree = qobject_cast<QTreeWidget*>(widget)) {
        tree->setHeaderLabels(texts);
    } else if (auto* tabs = qobject_cast<QTabWidget*>(widget)) {
        for (int index = 0; index < texts.size() && index < tabs->count(); ++index) {
            tabs->setTabText(index, texts[index]);
        }
    }
}

// Everything remembered on one object, shown again.
void showAll(QWidget* dialog, QObject* object) {
    const QVariant text = object->property(kSourceProperty);
    if (text.isValid()) {
        show(dialog, object, text.toString());
    }
    for (const char* property : {kToolTipProperty, kStatusTipProperty}) {
        const QVariant tip = object->property(property);
        if (tip.isValid()) {
            showTip(dialog, object, property, tip.toString());
        }
    }
    const QVariant items = object->property(kItemsProperty);
    if (items.isValid()) {
        if (auto* widget = qobject_cast<QWidget*>(object)) {
            showItems(dialog, widget, items.toStringList());
        }
    }
}

}  // namespace

QString nameOf(const char* text) {
    QString name;
    for (const QChar c : QString::fromUtf8(text)) {
        if (c.isLetterOrNumber()) {
            name += c;
        }
    }
    return name;
}

void setSourceText(QWidget* dialog, QObject* object, const char* source) {
    setSourceText(dialog, object, source, QStringList());
}

void setSourceText(QWidget* dialog, QObject* object, const char* source,
                   const QStringList& arguments) {
    const QString text = QString::fromUtf8(source);
    object->setProperty(kSourceProperty, text);
    object->setProperty(kArgumentsProperty, arguments.isEmpty() ? QVariant() : QVariant(arguments));
    show(dialog, object, text);
}

void setSourceText(QWidget* dialog, QObject* object, const char* source, const char* later) {
    object->setProperty(kSourceProperty, QString::fromUtf8(later));
    show(dialog, object, QString::fromUtf8(source));
}

void setSourceToolTip(QWidget* dialog, QObject* object, const char* source) {
    const QString text = QString::fromUtf8(source);
    object->setProperty(kToolTipProperty, text);
    showTip(dialog, object, kToolTipProperty, text);
}

void setSourceStatusTip(QWidget* dialog, QObject* object, const char* source) {
    const QString text = QString::fromUtf8(source);
    object->setProperty(kStatusTipProperty, text);
    showTip(dialog, object, kStatusTipProperty, text);
}

void setSourceItems(QWidget* dialog, QWidget* widget, const QList<const char*>& sources) {
    QStringList texts;
    for (const char* source : sources) {
        texts.append(QString::fromUtf8(source));
    }
    widget->setProperty(kItemsProperty, texts);
    showItems(dialog, widget, texts);
}

// Every object below the dialog, widgets and actions alike; popups and menus parented to it
// are reached too.
void retranslate(QWidget* dialog) {
    showAll(dialog, dialog);
    for (QObject* object : dialog->findChildren<QObject*>()) {
        showAll(dialog, object);
    }
}

QGroupBox* makeCheckGroup(QWidget* dialog, const QString& name, const char* title,
                          const std::vector<std::pair<const char*, bool>>& boxes,
                          QList<QCheckBox*>& made, int columns) {
    auto* group = new QGroupBox(dialog);
    group->setObjectName(QStringLiteral("groupBox_") + name);
    setSourceText(dialog, group, title);
    auto* grid = new QGridLayout(group);
    made.clear();
    for (size_t i = 0; i < boxes.size(); ++i) {
        auto* box = new QCheckBox(group);
        box->setObjectName(QStringLiteral("checkBox_") + nameOf(boxes[i].first));
        setSourceText(dialog, box, boxes[i].first);
        box->setChecked(boxes[i].second);
        grid->addWidget(box, static_cast<int>(i) / columns, static_cast<int>(i) % columns);
        made.append(box);
    }
    return group;
}

}  // namespace wc
