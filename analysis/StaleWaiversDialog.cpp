#include "StaleWaiversDialog.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

#include "frame/DialogTexts.h"
#include "frame/Translate.h"

namespace wc {

namespace {

const char* const kTitle = QT_TRANSLATE_NOOP("Widget_ResultsViewer", "Stale waivers");
const char* const kExplained =
    QT_TRANSLATE_NOOP("Widget_ResultsViewer", "These waivers match no hit of the shown run:");
const char* const kRemove = QT_TRANSLATE_NOOP("Widget_ResultsViewer", "Remove");
const char* const kClose = QT_TRANSLATE_NOOP("Widget_ResultsViewer", "Close");

}  // namespace

StaleWaiversDialog::StaleWaiversDialog(QWidget* viewer, const QStringList& lines)
    : QDialog(viewer), m_pStaleList(new QListWidget(this)) {
    setObjectName(QStringLiteral("m_pStaleWaiversDialog"));
    setWindowTitle(translateFor(viewer, QString::fromUtf8(kTitle)));
    auto* layout = new QVBoxLayout(this);
    auto* label = new QLabel(this);
    setSourceText(viewer, label, kExplained);
    layout->addWidget(label);
    m_pStaleList->setObjectName(QStringLiteral("m_pStaleList"));
    for (const QString& line : lines) {
        auto* item = new QListWidgetItem(line, m_pStaleList);
        item->setFlags(item->flags() | Qt::ItemIsUserCheckable);
        item->setCheckState(Qt::Unchecked);
    }
    layout->addWidget(m_pStaleList);
    auto* buttons = new QDialogButtonBox(this);
    QPushButton* remove = buttons->addButton(QString(), QDialogButtonBox::AcceptRole);
    remove->setObjectName(QStringLiteral("m_pRemovePB"));
    setSourceText(viewer, remove, kRemove);
    setSourceText(viewer, buttons->addButton(QString(), QDialogButtonBox::RejectRole), kClose);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    layout->addWidget(buttons);
    resize(520, 300);
}

std::vector<std::size_t> StaleWaiversDialog::ask(QWidget* viewer, const QStringList& lines) {
    StaleWaiversDialog dialog(viewer, lines);
    return dialog.exec() == QDialog::Accepted ? dialog.ticked() : std::vector<std::size_t>();
}

std::vector<std::size_t> StaleWaiversDialog::ticked() const {
    std::vector<std::size_t> out;
    for (int row = 0; row < m_pStaleList->count(); ++row) {
        if (m_pStaleList->item(row)->checkState() == Qt::Checked) {
            out.push_back(std::size_t(row));
        }
    }
    return out;
}

}  // namespace wc
