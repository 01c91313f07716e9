#pragma once
// Texts of a dialog's own widgets that follow the language: each widget made or labelled here
// remembers its English text, and retranslate() shows every remembered text again in the
// current language, in the dialog's translation context. Also the titled check-box groups of the
// optimisation dialogs (their radio-button groups are wc::ChoiceGroup).

#include <QList>
#include <QString>
#include <utility>
#include <vector>

class QCheckBox;
class QGroupBox;
class QWidget;

namespace wc {

// Labels, buttons, check boxes, group boxes (their title) and the dialog itself (its title).
void setSourceText(QWidget* dialog, QWidget* widget, const char* source);
void retranslate(QWidget* dialog);

// Check boxes in a titled box, laid out in `columns` columns; object names
// "checkBox_<text without blanks and punctuation>".
QGroupBox* makeCheckGroup(QWidget* dialog, const QString& name, const char* title,
                          const std::vector<std::pair<const char*, bool>>& boxes,
                          QList<QCheckBox*>& made, int columns = 1);

// The object-name form of a text: letters and digits only ("Shave Same Net" -> "ShaveSameNet").
QString nameOf(const char* text);

}  // namespace wc
