#pragma once
// "Waive...": asks why the chosen hits are harmless and what the waiver covers, the hit itself or
// every hit of its item between its two nets (offered only when the hits lie between two nets).
// A waiver without a reason is refused with a message and the dialog stays open.
//
// Its texts are the results viewer's: they are translated in the viewer's context.

#include <QDialog>
#include <QString>
#include <optional>

#include "frame/WidgetCommonExport.h"

class QPlainTextEdit;
class QRadioButton;

namespace wc {

struct WIDGET_COMMON_EXPORT WaiverAnswer {
    QString reason;
    bool net_pair = false;  // every hit of the item between the two nets
};

class WIDGET_COMMON_EXPORT WaiverDialog : public QDialog {
    Q_OBJECT
public:
    // `viewer` gives the texts' context; `hits` is how many hits are waived.
    WaiverDialog(QWidget* viewer, int hits, bool offer_net_pair);

    // Asks; nothing when the user cancels.
    static std::optional<WaiverAnswer> ask(QWidget* viewer, int hits, bool offer_net_pair);
    WaiverAnswer answer() const;

public slots:
    void accept() override;

private:
    QWidget* viewer_;
    QPlainTextEdit* m_pReasonTE;
    QRadioButton* m_pThisHitRB;
    QRadioButton* m_pNetPairRB;
};

}  // namespace wc
