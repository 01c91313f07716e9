#pragma once
// The operation buttons of the step-and-repeat editor as rows of one table: each row builds its
// button and says what pressing it does. The editor dispatches every press, from the button or
// from its public on_<Control>_clicked slot, through its row.

#include "steprepeat/PanelGeometry.h"

class Widget_SR_Edit;

namespace wc {
namespace sredit {

// What the editor does before the operation.
enum class Start {
    None,    // nothing: the operation changes the pick mode or closes
    Status,  // the operation buttons come up and the status shows the operation
    Read,    // as Status, and the table is read again
    // As Read; with nothing selected the user is asked whether to work on every instance:
    AskSteps,  // "The <words> operation requires at least 1 step(s),..."
    AskAll,    // "Operation will be performed on all steps.Continue?"
};

// Operations that work inside the panel need its profile, margins and the typed gap.
enum class Gap { None, Horizontal, Vertical };

// Where the button sits; the selection, edit and align buttons stay pressed while they are the
// current operation.
enum class Place { Selection, Edit, Align, Panel, Close };

// The step attributes that hold the panel margins (left, right, top, bottom), engine units.
extern const char* const kMarginAttributes[4];

struct Command {
    const char* name;    // object name of the button
    const char* text;    // button text, untranslated; "&&" shows one "&"
    const char* status;  // status text while the operation is current, untranslated
    Start start;
    const char* words;  // the question's words for Start::AskSteps ("move steps")
    Gap gap;
    Place place;
    // The operation itself, once the start went through. `frame` is filled for rows with a gap.
    void (*run)(Widget_SR_Edit& editor, const wc::panel::PanelFrame& frame);
};

}  // namespace sredit
}  // namespace wc
