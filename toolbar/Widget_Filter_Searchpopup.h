#pragma once
// Finds features of the work layers by symbol, text or attribute (wildcards allowed) and asks
// the view to zoom to the one the user picks.

#include <QStringList>
#include <QWidget>
#include <vector>

#include "Korvo_API_types.h"
#include "frame/WidgetCommonExport.h"

class QLabel;
class QLineEdit;
class QListWidget;

class WIDGET_COMMON_EXPORT Widget_Filter_Searchpopup : public QWidget {
    Q_OBJECT
public:
    // `handle` is the filter's host handle: positions are shown in its display unit.
    Widget_Filter_Searchpopup(const void* handle, QWidget* parent);

    void set_job(const QString& job, const QString& step, const QStringList& layers);
    void set_search_text(const QString& text);
    const std::vector<Korvo::API::featureInfo>& hits() const { return hits_; }

public slots:
    void on_Search_clicked();
    void on_Close_clicked();
    void change_language();

signals:
    // The feature lives in the popup; valid during the emission.
    void zoomtoview(Korvo::API::featureInfo& feature);

private:
    void initSearchPopup();
    void zoomToRow(int row);

    const void* handle_;
    std::string job_;
    std::string step_;
    std::vector<std::string> layers_;
    std::vector<Korvo::API::featureInfo> hits_;
    QLineEdit* find_ = nullptr;
    QListWidget* results_ = nullptr;
    QLabel* count_ = nullptr;
};
