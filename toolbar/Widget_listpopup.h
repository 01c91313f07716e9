#pragma once
// The symbol list of one symbol field of the feature filter: every symbol of the work layers,
// shown as "name (feature count)" in the display unit. Picked names go back to the filter with
// their engine names.

#include <QStringList>
#include <QWidget>

#include "frame/WidgetCommonExport.h"

class QLineEdit;
class QListWidget;

class WIDGET_COMMON_EXPORT Widget_listpopup : public QWidget {
    Q_OBJECT
public:
    explicit Widget_listpopup(QWidget* parent);

    // `shown` entries "name (remark)" and the engine name of each, in the same order.
    void set_items(const QStringList& shown, const QStringList& engine);
    // The entries whose name matches the wildcard `pattern` ("*" any run, "?" one character),
    // whatever the case, in list order.
    QStringList find_input_items(const QString& pattern) const;

public slots:
    void on_Ok_clicked();
    void on_Close_clicked();
    void change_language();

signals:
    // Names as shown (cut at the remark) and their engine names.
    void send_selected_symbols(const QStringList& shown, const QStringList& engine);

private:
    void initListPopup();
    void showMatching(const QString& text);

    QLineEdit* find_ = nullptr;
    QListWidget* list_ = nullptr;
};
