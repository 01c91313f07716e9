#pragma once
// Contourize parameters: accuracy, separation to islands and the clean-holes size and mode.
// Emits a contourize_params record; the host runs the operation.

#include <QWidget>

#include "frame/FieldCommit.h"
#include "frame/WidgetCommonExport.h"

class QButtonGroup;
class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QRadioButton;

class WIDGET_COMMON_EXPORT Widget_Contourize : public QWidget {
    Q_OBJECT
public:
    explicit Widget_Contourize(QWidget* parent);

public slots:
    void on_Apply_clicked();
    void on_Ok_clicked();
    void on_Close_clicked();
    void change_language();
    void change_unit();
    void Enter_Accuracy_Text();
    void Enter_MaxSize_Text();

signals:
    // The address of a contourize_params, valid only during the emission.
    void send_Contourize_Info(QObject* params);

private:
    void initContourize();
    bool judge_Apply();
    void mouseMoveEvent(QMouseEvent* event) override;

    wc::NumericFields numericFields();
    QLabel* makeLabel(const QString& name, const QString& text);

    const void* handle_;
    wc::NumericField accuracy_;
    wc::NumericField max_size_;

    QLabel* label_accuracy_ = nullptr;
    QLabel* unit_accuracy_ = nullptr;
    QLabel* label_separate_ = nullptr;
    QComboBox* combo_separate_ = nullptr;
    QLabel* label_clean_holes_ = nullptr;
    QLabel* label_max_size_ = nullptr;
    QLabel* unit_max_size_ = nullptr;
    QLabel* label_mode_ = nullptr;
    QButtonGroup* mode_group_ = nullptr;
    QRadioButton* radio_x_or_y_ = nullptr;
    QRadioButton* radio_x_and_y_ = nullptr;
    QRadioButton* radio_area_ = nullptr;
    QPushButton* button_ok_ = nullptr;
    QPushButton* button_apply_ = nullptr;
    QPushButton* button_close_ = nullptr;
};
