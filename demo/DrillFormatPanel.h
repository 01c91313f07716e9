#pragma once
// The demo's window on the drill files of a job opened from fabrication files: per drill layer
// the coordinate format it was read in and how that was chosen, and a way to read the file
// again in a format the user sets (unit, omitted zeros, integer and decimal digits) when the
// engine's choice is wrong. The file is read again through file_translate, so the engine keeps
// the layer's row and the user's format is what it reports from then on.

#include <QDialog>
#include <QString>

class QComboBox;
class QLabel;
class QSpinBox;
class QTableWidget;

class DrillFormatPanel : public QDialog {
    Q_OBJECT
public:
    DrillFormatPanel(const QString& job, const QString& step, const QString& folder,
                     QWidget* parent = nullptr);

    // One line per drill layer, "<layer>: <format> (<how it was chosen>)", for the host's log.
    static QStringList summary(const QString& job, const QString& step);

    // Reads `layer` again in the format set in the controls; false with the reason shown.
    bool readAgain();

signals:
    // After a drill layer was read again, with the line to log.
    void layerReread(const QString& layer, const QString& line);

private:
    void reload();
    void showRow(int row);

    QString job_;
    QString step_;
    QString folder_;
    QTableWidget* table_ = nullptr;
    QComboBox* units_ = nullptr;
    QComboBox* zeros_ = nullptr;
    QSpinBox* integers_ = nullptr;
    QSpinBox* decimals_ = nullptr;
    QLabel* status_ = nullptr;
};
