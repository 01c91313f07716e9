#pragma once
// "Stale waivers...": the waivers that match no hit of the shown run, one checkable line each;
// "Remove" answers the ticked ones. Its texts are the results viewer's.

#include <QDialog>
#include <QStringList>
#include <vector>

#include "frame/WidgetCommonExport.h"

class QListWidget;

namespace wc {

class WIDGET_COMMON_EXPORT StaleWaiversDialog : public QDialog {
    Q_OBJECT
public:
    // `lines` describe the stale waivers, in order.
    StaleWaiversDialog(QWidget* viewer, const QStringList& lines);

    // The positions in `lines` of the waivers to remove; empty when the user closes.
    static std::vector<std::size_t> ask(QWidget* viewer, const QStringList& lines);
    std::vector<std::size_t> ticked() const;

private:
    QListWidget* m_pStaleList;
};

}  // namespace wc
