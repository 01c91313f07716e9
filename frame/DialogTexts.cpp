#include "DialogTexts.h"

#include <QAbstractButton>
#include <QCheckBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>

#include "Translate.h"

namespace wc {
namespace {

const char* const kSourceProperty = "wcSourceText";

void show(QWidget* dialog, QWidget* widget, const QString& source) {
    const QString text = translateFor(dialog, source);
    if (widget == dialog) {
        widget->setWindowTitle(text);
    } else if (auto* box = qobject_cast<QGroupBox*>(widget)) {
        box->setTitle(text);
    } else if (auto* button = qobject_cast<QAbstractButton*>(widget)) {
        button->setText(text);
    } else if (auto* label = qobject_cast<QLabel*>(widget)) {
        label->setText(text);
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

void setSourceText(QWidget* dialog, QWidget* widget, const char* source) {
    const QString text = QString::fromUtf8(source);
    widget->setProperty(kSourceProperty, text);
    show(dialog, widget, text);
}

void retranslate(QWidget* dialog) {
    const QVariant own = dialog->property(kSourceProperty);
    if (own.isValid()) {
        show(dialog, dialog, own.toString());
    }
    for (QWidget* widget : dialog->findChildren<QWidget*>()) {
        const QVariant source = widget->property(kSourceProperty);
        if (source.isValid()) {
            show(dialog, widget, source.toString());
        }
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
