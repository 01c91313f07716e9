#include "ZeProgressDialog.h"

#include <QCloseEvent>
#include <QKeyEvent>

namespace {

// A cancel button (or its Escape shortcut) becomes a stop request: the run's owner decides when
// the window goes, so the dialog must not reset and hide itself.
void routeCancelToStop(ZeProgressDialog* dialog) {
    QObject::disconnect(dialog, SIGNAL(canceled()), dialog, SLOT(cancel()));
    QObject::connect(dialog, &QProgressDialog::canceled, dialog, &ZeProgressDialog::requestStop);
}

}  // namespace

ZeProgressDialog::ZeProgressDialog(const QString& label, const QString& cancel_text, int minimum,
                                   int maximum, QWidget* parent, Qt::WindowFlags flags)
    : QProgressDialog(label, cancel_text, minimum, maximum, parent, flags) {
    routeCancelToStop(this);
}

ZeProgressDialog::ZeProgressDialog(QWidget* parent) : QProgressDialog(parent) {
    routeCancelToStop(this);
}

void ZeProgressDialog::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape) {
        stop_ = true;
        event->accept();
        return;
    }
    QProgressDialog::keyPressEvent(event);
}

void ZeProgressDialog::keyReleaseEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape) {
        event->accept();
        return;
    }
    QProgressDialog::keyReleaseEvent(event);
}

void ZeProgressDialog::closeEvent(QCloseEvent* event) {
    stop_ = true;
    // Skips QProgressDialog's handler, which would cancel and reset the progress.
    QDialog::closeEvent(event);
}
