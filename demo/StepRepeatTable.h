#pragma once
// The host's table view of the current step's step-and-repeat rows: step, x, y, dx, dy, nx, ny,
// angle, mirror, lengths in the display unit; rows with a selected instance are marked.

#include <QTableWidget>
#include <string>

class StepRepeatTable : public QTableWidget {
    Q_OBJECT
public:
    // `handle` is the host window through which the display unit is known.
    StepRepeatTable(const void* handle, QWidget* parent = nullptr);

    void showStep(const std::string& job, const std::string& step);
    void refresh();

private:
    const void* handle_;
    std::string job_;
    std::string step_;
};
