#pragma once
// The demo's layer matrix of one job: a table of its layers (name, context, type, polarity,
// side, drill span, row) edited in place. Names are typed in their cell; the enumerated columns
// and the two ends of a drill span are combo boxes; the row is a spin box, and rows also move
// by drag and drop or the "Move up" / "Move down" buttons. Every edit goes to the engine
// (change_matrix, move_layer_poi), through the recorder's twin first when saving is on. A
// refused edit shows the engine's reason under the table and puts the row back as the engine
// has it; an accepted one re-reads the matrix and sends the matrix message (20002401 to
// "Matrix.dll", "DstType" = "Matrix") so that the open dialogs and the host's layer list see
// the change. The table also re-reads the matrix when another module sends that message.

#include <QDialog>
#include <QString>
#include <vector>

#include "Korvo_API_types.h"

class QLabel;
class QPushButton;
class QTableWidget;

class MatrixPanel : public QDialog {
    Q_OBJECT
public:
    enum Column { Name, Context, Type, Polarity, Side, DrillStart, DrillEnd, Row, ColumnCount };

    explicit MatrixPanel(const QString& job, QWidget* parent = nullptr);
    ~MatrixPanel() override;

    QString job() const { return job_; }
    // The matrix as last read from the engine.
    const std::vector<Korvo::API::layer_info>& matrix() const { return matrix_; }
    // The reason shown for the last refused edit; empty after an accepted one.
    QString message() const;

    // Re-reads the matrix and shows it.
    void reload();
    // Moves the layer in table row `from` to `to` (rows count from 0); false when refused.
    bool moveLayer(int from, int to);

    // The row as it should be after its type became `type`: a side, context and drill span that
    // suit the new type where the old ones do not (copper goes inner, a mask, silk or paste layer
    // top, a drill layer spans the outer copper layers, other types lose their span).
    static Korvo::API::layer_info retyped(Korvo::API::layer_info layer, const std::string& type,
                                          const std::vector<Korvo::API::layer_info>& matrix);

signals:
    // After the engine accepted an edit.
    void matrixChanged(const QString& job);

private:
    void showRow(int index);
    // Sends `wanted` for the layer shown in table row `index`, moving it to `new_row` (rows of
    // the matrix count from 1); false when the engine refused.
    bool apply(int index, const Korvo::API::layer_info& wanted, int new_row);
    void commitCombo(int index, Column column, const QString& value);
    void commitName(int index);
    void refused(int index, const QString& why);
    void accepted();

    QString job_;
    std::vector<Korvo::API::layer_info> matrix_;
    QTableWidget* table_ = nullptr;
    QLabel* message_ = nullptr;
    QPushButton* up_ = nullptr;
    QPushButton* down_ = nullptr;
    int subscription_ = -1;
    bool showing_ = false;  // the table is being filled: its signals are not edits
};
