#pragma once
// Texts of a dialog's own widgets that follow the language: each widget made or labelled here
// remembers its English text, and retranslate() shows every remembered text again in the
// current language, in the dialog's translation context. This is the one way a dialog follows
// the language: its change_language() is retranslate(this) and whatever its shared pieces
// (run controls, field tables) add. Also the titled check-box groups of the optimisation
// dialogs (their radio-button groups are wc::ChoiceGroup).

#include <QList>
#include <QString>
#include <QStringList>
#include <utility>
#include <vector>

class QCheckBox;
class QGroupBox;
class QObject;
class QWidget;

namespace wc {

// Labels, buttons, check boxes, group boxes (their title), actions, line edits (their
// placeholder) and the dialog itself (its title).
void setSourceText(QWidget* dialog, QObject* object, const char* source);
// The same, showing `source` until the first retranslate() and `later` from then on: a few
// dialogs space a text differently after a language change, and both forms are kept.
void setSourceText(QWidget* dialog, QObject* object, const char* source, const char* later);
// The same for a text with places "%1", "%2"... that `arguments` fill after translation
// ("Selected Steps : %1"); called again when the values change.
void setSourceText(QWidget* dialog, QObject* object, const char* source,
                   const QStringList& arguments);
// The tool tip and the status-bar tip of a widget or an action.
void setSourceToolTip(QWidget* dialog, QObject* object, const char* source);
void setSourceStatusTip(QWidget* dialog, QObject* object, const char* source);
// The items of a combo box or a list widget, the column headers of a table or tree widget, or
// the tab texts of a tab widget, in order.
void setSourceItems(QWidget* dialog, QWidget* widget, const QList<const char*>& sources);
void retranslate(QWidget* dialog);

// Check boxes in a titled box, laid out in `columns` columns; object names
// "checkBox_<text without blanks and punctuation>".
QGroupBox* makeCheckGroup(QWidget* dialog, const QString& name, const char* title,
                          const std::vector<std::pair<const char*, bool>>& boxes,
                          QList<QCheckBox*>& made, int columns = 1);

// The object-name form of a text: letters and digits only ("Shave Same Net" -> "ShaveSameNet").
QString nameOf(const char* text);

}  // namespace wc
