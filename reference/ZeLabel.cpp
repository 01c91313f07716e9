#include "ZeLabel.h"

namespace Korvo {
namespace UIAPI {

ZeLabel::ZeLabel(QWidget* parent) : QLabel(parent) {}

ZeLabel::ZeLabel(const QString& text, QWidget* parent) : QLabel(text, parent) {}

}  // namespace UIAPI
}  // namespace Korvo
