#include "ChoiceGroup.h"

#include <QAbstractButton>
#include <QButtonGroup>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QRadioButton>

#include "DialogTexts.h"

namespace wc {

void ChoiceGroup::check(int id) const {
    if (QAbstractButton* button = group->button(id)) {
        button->setChecked(true);
    }
}

ChoiceGroup makeChoiceGroup(QWidget* dialog, const QString& name, const char* title,
                            std::vector<const char*> choices, int checked_id) {
    ChoiceGroup made;
    made.title = title;
    made.choices = std::move(choices);
    made.box = new QGroupBox(dialog);
    made.box->setObjectName(QStringLiteral("groupBox_") + name);
    made.group = new QButtonGroup(made.box);
    made.group->setObjectName(QStringLiteral("buttonGroup_") + name);
    auto* row = new QHBoxLayout(made.box);
    for (size_t id = 0; id < made.choices.size(); ++id) {
        auto* radio = new QRadioButton(made.box);
        radio->setObjectName(QStringLiteral("radioButton_") + name + QLatin1Char('_') +
                             QString::fromUtf8(made.choices[id]).remove(QLatin1Char(' ')));
        made.group->addButton(radio, static_cast<int>(id));
        row->addWidget(radio);
    }
    row->addStretch();
    // The texts remember their English, so that wc::retranslate(dialog) covers them too.
    setSourceText(dialog, made.box, made.title);
    for (size_t id = 0; id < made.choices.size(); ++id) {
        setSourceText(dialog, made.group->button(static_cast<int>(id)), made.choices[id]);
    }
    made.check(checked_id);
    return made;
}

}  // namespace wc
