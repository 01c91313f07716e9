#pragma once
// The list of predefined user filters behind "User filter ...": one click runs one.

#include <QWidget>

#include "frame/WidgetCommonExport.h"

class WIDGET_COMMON_EXPORT Widget_UserFilterList : public QWidget {
    Q_OBJECT
public:
    explicit Widget_UserFilterList(QWidget* parent);

public slots:
    void change_language();

signals:
    void send_user_filter(const QString& name);
};
