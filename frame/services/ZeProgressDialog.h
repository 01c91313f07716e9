#pragma once

#include <QProgressDialog>

// The host's progress window. It has no cancel button of its own in the library's use: the user
// stops a run with Escape or by closing the window, and the run's owner asks isDialogStop().
class ZeProgressDialog : public QProgressDialog {
    Q_OBJECT
public:
    ZeProgressDialog(const QString& label, const QString& cancel_text, int minimum, int maximum,
                     QWidget* parent = nullptr, Qt::WindowFlags flags = Qt::WindowFlags());
    explicit ZeProgressDialog(QWidget* parent = nullptr);

    bool isDialogStop() const { return stop_; }
    // For the host and tests: the same as the user pressing Escape.
    void requestStop() { stop_ = true; }

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    bool stop_ = false;
};
