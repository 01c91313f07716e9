#pragma once
// The browser of the result database: a window listing the stored checks. The host's browser
// derives from CheckResultBrowser and emits
//   send_check_id_text(QString&)     the id of a stored check to load with its record,
//   send_tq_check_id_text(QString&)  the key of a stored result to load without its record,
//   send_load_index(int)             the position of the chosen check in getCheckResultMaster().
// The window is parented to `parent` and refreshes its list whenever it is shown.

#include <QString>
#include <QWidget>

namespace Quorin {
namespace DBS_API {

class CheckResultBrowser : public QWidget {
    Q_OBJECT
public:
    using QWidget::QWidget;

signals:
    void send_check_id_text(QString& id);
    void send_tq_check_id_text(QString& key);
    void send_load_index(int index);
};

CheckResultBrowser* createCheckResultBrowser(QWidget* parent);

}  // namespace DBS_API
}  // namespace Quorin
