#pragma once
// Attribute conditions of the feature filter: name and value pairs (an empty value asks only
// for the attribute) and whether all of them or any one must hold.

#include <QWidget>
#include <map>
#include <string>

#include "frame/WidgetCommonExport.h"

class QComboBox;
class QLineEdit;
class QListWidget;

class WIDGET_COMMON_EXPORT Widget_Filter_Attributes : public QWidget {
    Q_OBJECT
public:
    enum Logic { LogicAll = 0, LogicAny = 1 };

    explicit Widget_Filter_Attributes(QWidget* parent);

    std::map<std::string, std::string> get_attributeinfoFilter_list() const;
    int logic() const;
    // Names offered in the attribute box (it stays editable).
    void set_attribute_names(const QStringList& names);
    // Adds every attribute of a feature the user picked in the view.
    void add_conditions(const std::map<std::string, std::string>& attributes);

public slots:
    void on_Add_clicked();
    void on_Remove_clicked();
    void on_Clear_clicked();
    void on_Apply_clicked();
    void on_Close_clicked();
    void reset_conditions();
    void change_language();

signals:
    void send_attributeinfoFilter_list(std::map<std::string, std::string> conditions);
    void send_IncludeLogic(int logic);
    // Apply: the filter takes the conditions into its attribute field.
    void apply_conditions();

private:
    void initFilterAttributes();
    void conditionsChanged();

    std::map<std::string, std::string> conditions_;
    QComboBox* name_ = nullptr;
    QLineEdit* value_ = nullptr;
    QListWidget* list_ = nullptr;
    QComboBox* logic_ = nullptr;
};
