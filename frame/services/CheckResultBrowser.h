#pragma once
// The browser of the result database: a window listing the stored checks. It emits, as
// old-style signals of the returned widget,
//   send_check_id_text(QString&)     the id of a stored check to load with its record,
//   send_tq_check_id_text(QString&)  the key of a stored result to load without its record,
//   send_load_index(int)             the position of the chosen check in getCheckResultMaster().
// The window is parented to `parent` and refreshes its list whenever it is shown.

class QWidget;

namespace Quorin {
namespace DBS_API {

QWidget* createCheckResultBrowser(QWidget* parent);

}  // namespace DBS_API
}  // namespace Quorin
