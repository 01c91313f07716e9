#pragma once
// The dialogs the demo knows: one row each. A new dialog is one more row in
// DialogCatalogue.cpp; the menu, the unit and language switches and the tour follow from it.

#include <QString>
#include <functional>
#include <vector>

class QWidget;

namespace demo {

// What a dialog row needs from the demo window.
struct DemoContext {
    QWidget* host = nullptr;                  // parent handle of every dialog
    std::function<void(const QString&)> log;  // one line in the log pane
    QString job;
    QString step;
};

struct DialogEntry {
    QString menu;   // menu and tour name
    QString group;  // menu the entry stands in
    // Builds the dialog and connects its outgoing signals to the log.
    std::function<QWidget*(const DemoContext&)> create;
    // Calls the dialog's unit and language slots.
    std::function<void(QWidget*)> changeUnit;
    std::function<void(QWidget*)> changeLanguage;
    // Presses the dialog's Apply (the tour shows what the host then receives).
    std::function<void(QWidget*)> apply;
};

const std::vector<DialogEntry>& dialogCatalogue();

}  // namespace demo
