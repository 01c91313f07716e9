#include "ZeLineEdit.h"

#include <glog/logging.h>
#include <QRegExpValidator>

#include "UnitService.h"

namespace Korvo {
namespace UIAPI {

namespace {

QString patternOf(ZeERegExp kind) {
    switch (kind) {
        case ZeE_Integer:
            return QStringLiteral("[-]?(0|[1-9][0-9]{0,14})");
        case ZeE_PositiveInteger:  // zero included: counts and indices
            return QStringLiteral("0|[1-9][0-9]{0,14}");
        case ZeE_Float:
            return QStringLiteral(
                "[-]?[1-9][0-9]{0,14}|[-]?[0][.][0-9]{0,5}|[-]?[1-9][0-9]{0,}[.][0-9]{1,5}");
        case ZeE_PositiveFloat:
            return QStringLiteral("[1-9][0-9]{0,14}|[0][.][0-9]{0,5}|[1-9][0-9]{0,}[.][0-9]{1,5}");
        case ZeE_LayerName:
            return QStringLiteral("^[a-z0-9_+.;-]{0,64}$");
        case ZeE_Symbol:
            return QStringLiteral("^[a-z0-9_+.-]{0,64}$");
        case ZeE_Angle:
            return QStringLiteral(
                "360([.]0{1,5})?|(3[0-5][0-9]|[12][0-9]{2}|[1-9]?[0-9])([.][0-9]{1,5})?");
        case ZeE_Text:
            break;
    }
    return QString();
}

bool isLengthKind(ZeERegExp kind) {
    return kind == ZeE_Float || kind == ZeE_PositiveFloat;
}

// The unit of the nearest ancestor that the unit service knows by itself: the host handle is
// the dialog's parent, and the dialog is usually the field's parent.
int unitAround(const QWidget* parent) {
    const wcref::UnitService& units = wcref::UnitService::instance();
    for (const QObject* object = parent; object != nullptr; object = object->parent()) {
        if (units.hasOwnUnit(object))
            return units.unit(object);
    }
    return units.defaultUnit();
}

}  // namespace

ZeLineEdit::ZeLineEdit(ZeERegExp kind, QWidget* parent)
    : QLineEdit(parent), kind_(kind), unit_(unitAround(parent)) {
    applyKind();
}

ZeLineEdit::ZeLineEdit(const QString& text, ZeERegExp kind, QWidget* parent)
    : QLineEdit(text, parent), kind_(kind), unit_(unitAround(parent)) {
    applyKind();
}

ZeLineEdit::ZeLineEdit(QWidget* parent) : QLineEdit(parent), unit_(unitAround(parent)) {
    applyKind();
}

void ZeLineEdit::applyKind() {
    const QString pattern = patternOf(kind_);
    if (pattern.isEmpty())
        return;
    setValidator(new QRegExpValidator(QRegExp(pattern, Qt::CaseSensitive), this));
}

void ZeLineEdit::setTextUnit(int unit) {
    if (!wcref::UnitService::isValidUnit(unit)) {
        LOG(ERROR) << "unknown unit code " << unit << " for field " << objectName().toStdString();
        return;
    }
    unit_ = unit;
}

void ZeLineEdit::changeunit(const int& unit) {
    if (!wcref::UnitService::isValidUnit(unit)) {
        LOG(ERROR) << "unknown unit code " << unit << " for field " << objectName().toStdString();
        return;
    }
    if (isLengthKind(kind_) && unit_ != unit) {
        bool ok = false;
        const double value = text().toDouble(&ok);
        if (ok) {
            setText(
                QString::number(wcref::UnitService::convertDisplay(value, unit_, unit), 'g', 6));
        }
    }
    unit_ = unit;
}

}  // namespace UIAPI
}  // namespace Korvo
