#pragma once
// Contourize parameters: accuracy, separation to islands and the clean-holes size and mode.
// Emits a contourize_params record; the host runs the operation.

#include <QWidget>
#include <memory>

#include "frame/WidgetCommonExport.h"

class QButtonGroup;
class QComboBox;
struct contourize_params;

namespace wc {
template <class Record>
class FieldTable;
}

class WIDGET_COMMON_EXPORT Widget_Contourize : public QWidget {
    Q_OBJECT
public:
    explicit Widget_Contourize(QWidget* parent);
    ~Widget_Contourize() override;

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

    // A child with an object name and a text that follows the language (`later` from the first
    // language change on, when it differs).
    template <class W>
    W* make(const char* name, const char* text, const char* later = nullptr);

    const void* handle_;
    std::unique_ptr<wc::FieldTable<contourize_params>> fields_;
    QComboBox* combo_separate_ = nullptr;
    QButtonGroup* mode_group_ = nullptr;
};
