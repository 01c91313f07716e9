#pragma once
// Answers every modal message box that appears while it lives, and records what it saw.
// A test that triggers a QMessageBox::information/warning/question would otherwise block in
// the box's event loop; this polls for the box from inside that loop and presses a button.

#include <QList>
#include <QMessageBox>
#include <QObject>
#include <QString>
#include <QTimer>
#include <functional>

namespace wctest {

struct ShownBox {
    QString title;
    QString text;
    QMessageBox::Icon icon = QMessageBox::NoIcon;
    QMessageBox::StandardButton pressed = QMessageBox::NoButton;
    QString pressed_text;
};

class MessageBoxAnswerer : public QObject {
    Q_OBJECT
public:
    // `answer` is pressed when the box has it; otherwise the box's default (or escape, or first)
    // button is pressed.
    explicit MessageBoxAnswerer(QMessageBox::StandardButton answer = QMessageBox::Ok);
    ~MessageBoxAnswerer() override;

    // Answers for the next boxes, in order; after them `answer` applies again.
    void script(const QList<QMessageBox::StandardButton>& answers);
    void setDefaultAnswer(QMessageBox::StandardButton answer) { answer_ = answer; }
    // Called with each box before it is answered: what the dialog showed while asking.
    void onEachBox(std::function<void(QMessageBox*)> seen) { seen_ = std::move(seen); }

    const QList<ShownBox>& boxes() const { return boxes_; }
    int count() const { return boxes_.size(); }
    // The last box seen; an empty record when none was seen.
    ShownBox last() const;
    QStringList texts() const;
    void clear() { boxes_.clear(); }

private:
    void poll();
    void answer(QMessageBox* box);

    QTimer timer_;
    QMessageBox::StandardButton answer_;
    QList<QMessageBox::StandardButton> scripted_;
    QList<ShownBox> boxes_;
    std::function<void(QMessageBox*)> seen_;
};

}  // namespace wctest
