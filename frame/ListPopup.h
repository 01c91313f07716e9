#pragma once
// The small list popup of the run controls: the layer list (kind 7, several names joined by ";")
// and the parameter-set list (kind 37, one name). Created once by its owner and reused.

#include <QString>
#include <QStringList>
#include <QWidget>

#include "frame/WidgetCommonExport.h"

class QListWidget;
class QListWidgetItem;
class QPushButton;

namespace wc {

class WIDGET_COMMON_EXPORT ListPopup : public QWidget {
    Q_OBJECT
public:
    enum Kind { LayerList = 7, NameList = 37 };

    ListPopup(Kind kind, QWidget* parent);

    Kind kind() const { return kind_; }
    void setItems(const QStringList& items);
    QStringList items() const;
    // Shows the popup below `anchor` (or where it stood last when null).
    void popUp(QWidget* anchor);

public slots:
    // Sends the chosen text: the selected names joined by ";" (a layer list) or the clicked
    // name (a name list), then hides.
    void choose();

signals:
    void send_Text(const QString& text);

private:
    void onItemActivated(QListWidgetItem* item);

    Kind kind_;
    QListWidget* list_ = nullptr;
    QPushButton* ok_ = nullptr;
};

}  // namespace wc
