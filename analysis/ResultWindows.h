#pragma once
// The two windows a dialog that runs the engine opens beside itself: its results viewer and its
// range editor. The viewer follows the dialog's job, step and unit, and its raise signal brings
// the dialog back; a run refreshes a viewer that is already open, the view button opens it.
//
//     windows_.showViewer(this, open, &Widget_ResultsViewer::TearDrop_DFM_raise,
//         [&] { return new Widget_ResultsViewer(0, host, layers, result); },
//         [&](Widget_ResultsViewer& viewer) { viewer.RefreshTeardropsData(layers, result_); });

#include <QPointer>
#include <QWidget>

#include "analysis/Widget_Ranges.h"
#include "analysis/Widget_ResultsViewer.h"
#include "frame/DialogShell.h"

namespace wc {

class ResultWindows {
public:
    explicit ResultWindows(DialogShell& shell) : shell_(shell) {}

    Widget_ResultsViewer* viewer() const { return viewer_.data(); }

    // `make` creates the viewer on the current result; `refresh` shows a new result in it.
    // `Dialog` has the unit_changed() signal the viewer follows; `raise`, when not null, is the
    // viewer's signal that brings the dialog back.
    template <class Dialog, class Make, class Refresh>
    void showViewer(Dialog* dialog, bool open, void (Widget_ResultsViewer::*raise)(), Make make,
                    Refresh refresh) {
        if (viewer_.isNull()) {
            if (!open) {
                return;
            }
            viewer_ = make();
            viewer_->setJobAndStep(shell_.job(), shell_.step());
            QObject::connect(&shell_, &DialogShell::jobStepChanged, viewer_.data(),
                             &Widget_ResultsViewer::setJobAndStep);
            QObject::connect(dialog, &Dialog::unit_changed, viewer_.data(),
                             &Widget_ResultsViewer::change_unit);
            if (raise != nullptr) {
                QObject::connect(viewer_.data(), raise, dialog, [dialog] {
                    dialog->show();
                    dialog->raise();
                    dialog->activateWindow();
                });
            }
        } else {
            refresh(*viewer_);
        }
        if (open || viewer_->isVisible()) {
            viewer_->show();
            viewer_->raise();
        }
    }

    // "Ranges...": the range editor of the dialog's kind, titled after `owner`; it follows the
    // dialog's unit_changed() signal.
    template <class Dialog>
    void openRanges(Dialog* dialog, const char* owner) {
        Widget_Ranges::openFor(ranges_, dialog, shell_.handle(),
                               shell_.controls().options().range_key, owner);
    }

private:
    DialogShell& shell_;
    QPointer<Widget_ResultsViewer> viewer_;
    QPointer<Widget_Ranges> ranges_;
};

}  // namespace wc
