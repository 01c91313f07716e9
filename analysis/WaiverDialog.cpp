#include "WaiverDialog.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

#include "frame/DialogTexts.h"
#include "frame/Translate.h"

namespace wc {

namespace {

// The viewer's texts (lupdate reads the context from each mark).
const char* const kTitle = QT_TRANSLATE_NOOP("Widget_ResultsViewer", "Waive");
const char* const kCount = QT_TRANSLATE_NOOP("Widget_ResultsViewer", "%n hits to waive");
const char* const kReason = QT_TRANSLATE_NOOP("Widget_ResultsViewer", "Reason:");
const char* const kThisHit = QT_TRANSLATE_NOOP("Widget_ResultsViewer", "This hit");
const char* const kNetPair =
    QT_TRANSLATE_NOOP("Widget_ResultsViewer", "Every hit of this item between these two nets");
const char* const kCancel = QT_TRANSLATE_NOOP("Widget_ResultsViewer", "Cancel");
const char* const kNoReason = QT_TRANSLATE_NOOP("Widget_ResultsViewer", "A waiver needs a reason.");
const char* const kInformation = QT_TRANSLATE_NOOP("Widget_ResultsViewer", "Information");

}  // namespace

WaiverDialog::WaiverDialog(QWidget* viewer, int hits, bool offer_net_pair)
    : QDialog(viewer),
      viewer_(viewer),
      m_pReasonTE(new QPlainTextEdit(this)),
      m_pThisHitRB(new QRadioButton(this)),
      m_pNetPairRB(new QRadioButton(this)) {
    setObjectName(QStringLiteral("m_pWaiverDialog"));
    setWindowTitle(translateFor(viewer, QString::fromUtf8(kTitle)));
    auto* layout = new QVBoxLayout(this);
    auto* what = new QLabel(translateFor(viewer, kCount, hits), this);
    what->setObjectName(QStringLiteral("m_pWaivedCountLabel"));
    layout->addWidget(what);
    auto* reason = new QLabel(this);
    setSourceText(viewer, reason, kReason);
    layout->addWidget(reason);
    m_pReasonTE->setObjectName(QStringLiteral("m_pReasonTE"));
    m_pReasonTE->setTabChangesFocus(true);
    layout->addWidget(m_pReasonTE);
    m_pThisHitRB->setObjectName(QStringLiteral("m_pThisHitRB"));
    m_pNetPairRB->setObjectName(QStringLiteral("m_pNetPairRB"));
    setSourceText(viewer, m_pThisHitRB, kThisHit);
    setSourceText(viewer, m_pNetPairRB, kNetPair);
    m_pThisHitRB->setChecked(true);
    m_pNetPairRB->setVisible(offer_net_pair);
    layout->addWidget(m_pThisHitRB);
    layout->addWidget(m_pNetPairRB);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    setSourceText(viewer, buttons->button(QDialogButtonBox::Ok), kTitle);
    setSourceText(viewer, buttons->button(QDialogButtonBox::Cancel), kCancel);
    connect(buttons, &QDialogButtonBox::accepted, this, &WaiverDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &WaiverDialog::reject);
    layout->addWidget(buttons);
    m_pReasonTE->setFocus();
}

std::optional<WaiverAnswer> WaiverDialog::ask(QWidget* viewer, int hits, bool offer_net_pair) {
    WaiverDialog dialog(viewer, hits, offer_net_pair);
    if (dialog.exec() != QDialog::Accepted) {
        return std::nullopt;
    }
    return dialog.answer();
}

WaiverAnswer WaiverDialog::answer() const {
    return {m_pReasonTE->toPlainText().trimmed(),
            m_pNetPairRB->isVisibleTo(this) && m_pNetPairRB->isChecked()};
}

void WaiverDialog::accept() {
    if (answer().reason.isEmpty()) {
        QMessageBox::information(this, translateFor(viewer_, QString::fromUtf8(kInformation)),
                                 translateFor(viewer_, QString::fromUtf8(kNoReason)),
                                 QMessageBox::Ok);
        m_pReasonTE->setFocus();
        return;
    }
    QDialog::accept();
}

}  // namespace wc
