#pragma once

#include <QLabel>

namespace Korvo {
namespace UIAPI {

// A label that carries three strings for the host beside its text.
class ZeLabel : public QLabel {
    Q_OBJECT
public:
    explicit ZeLabel(QWidget* parent = nullptr);
    ZeLabel(const QString& text, QWidget* parent = nullptr);

    void setAttribute1(const QString& value) { attribute1_ = value; }
    void setAttribute2(const QString& value) { attribute2_ = value; }
    void setAttribute3(const QString& value) { attribute3_ = value; }
    QString getAttribute1() const { return attribute1_; }
    QString getAttribute2() const { return attribute2_; }
    QString getAttribute3() const { return attribute3_; }

private:
    QString attribute1_;
    QString attribute2_;
    QString attribute3_;
};

}  // namespace UIAPI
}  // namespace Korvo
