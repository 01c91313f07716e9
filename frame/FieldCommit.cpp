#include "FieldCommit.h"

#include <glog/logging.h>

#include <QLineEdit>
#include <QMessageBox>
#include <QWidget>

#include "Korvo_UIAPI.h"
#include "Translate.h"

namespace wc {

QString illegalFloatMessage(const QString& engine_name, const QString& text, int lower, int upper) {
    return illegalFloatMessage(engine_name, text, QString::number(lower, 10),
                               QString::number(upper, 10));
}

QString illegalFloatMessage(const QString& engine_name, const QString& text, const QString& lower,
                            const QString& upper) {
    return QStringLiteral("Illegal float value\n") + QStringLiteral("floating value for field \"") +
           engine_name + QStringLiteral("\" is out of range: ") + text +
           QStringLiteral("\nlegal values: from ") + lower + QStringLiteral(" to ") + upper;
}

bool commitField(QWidget* dialog, const void* handle, NumericField& field) {
    const QString text = field.edit->text();
    field.last_committed = text;
    const double value = text.toDouble();
    const int upper = Korvo::UIAPI::getUnitJudgeData(handle, field.upper_mil);
    if (value <= upper) {
        return true;
    }
    const int lower = Korvo::UIAPI::getUnitJudgeData(handle, field.lower_mil);
    const QString message = illegalFloatMessage(field.engine_name, text, lower, upper);
    LOG(INFO) << "field " << field.engine_name.toStdString() << " rejected " << text.toStdString();
    QMessageBox::information(
        dialog, translateFor(dialog, QString::fromUtf8(QT_TRANSLATE_NOOP("Shared", "Information"))),
        translateFor(dialog, message), QMessageBox::Ok);
    // The literal reset text, not converted to the display unit: kept on purpose.
    field.edit->setText(field.reset_text);
    return false;
}

bool judgeFields(QWidget* dialog, const void* handle, const NumericFields& fields) {
    for (const NumericField* field : fields) {
        if (field->edit->text().isEmpty()) {
            QMessageBox::information(
                dialog,
                translateFor(dialog, QString::fromUtf8(QT_TRANSLATE_NOOP("Shared", "Information"))),
                translateFor(dialog,
                             QString::fromUtf8(QT_TRANSLATE_NOOP("Shared", "Illegal field value"))),
                QMessageBox::Ok);
            return false;
        }
    }
    for (const NumericField* field : fields) {
        const double value = field->edit->text().toDouble();
        if (value > Korvo::UIAPI::getUnitJudgeData(handle, field->upper_mil) ||
            value < Korvo::UIAPI::getUnitJudgeData(handle, field->lower_mil)) {
            LOG(INFO) << "field " << field->engine_name.toStdString() << " out of range at apply";
            return false;
        }
    }
    return true;
}

bool hasPendingEdit(const NumericField& field) {
    const QString text = field.edit->text();
    return !text.isEmpty() && text != field.last_committed;
}

bool insideAsTested(const QRect& rect, const QPoint& point) {
    // Width and height, not right and bottom: kept on purpose.
    return point.x() > rect.x() && point.x() < rect.width() && point.y() > rect.y() &&
           point.y() < rect.height();
}

int commitPendingOnLeave(const QPoint& pos, const QRect& first_field, const NumericFields& fields,
                         const std::function<void(int)>& commit) {
    if (insideAsTested(first_field, pos)) {
        return 0;
    }
    // Each field is looked at in turn, so a commit that resets one field does not hide another.
    int committed = 0;
    for (int i = 0; i < fields.size(); ++i) {
        if (hasPendingEdit(*fields[i])) {
            commit(i);
            ++committed;
        }
    }
    return committed;
}

}  // namespace wc
