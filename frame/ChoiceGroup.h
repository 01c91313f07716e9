#pragma once
// A titled box of radio buttons with ids 0, 1, ... in a button group, as the optimisation
// dialogs lay out their choices ("Apply to", "Work Mode", ...). Object names: "groupBox_<name>",
// "buttonGroup_<name>", "radioButton_<name>_<choice>" (blanks in the choice dropped), so tests
// and parameter sets find them. The texts follow the language through wc::retranslate(dialog).

#include <QString>
#include <vector>

class QButtonGroup;
class QGroupBox;
class QWidget;

namespace wc {

struct ChoiceGroup {
    QGroupBox* box = nullptr;
    QButtonGroup* group = nullptr;
    const char* title = "";
    std::vector<const char*> choices;  // untranslated texts, in id order

    // Checks the button of `id`; an unknown id changes nothing.
    void check(int id) const;
};

ChoiceGroup makeChoiceGroup(QWidget* dialog, const QString& name, const char* title,
                            std::vector<const char*> choices, int checked_id);

}  // namespace wc
