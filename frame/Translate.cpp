#include "Translate.h"

#include <QCoreApplication>
#include <QObject>

namespace wc {

QString translateFor(const QObject* owner, const QString& text) {
    const char* context = owner != nullptr ? owner->metaObject()->className() : "QObject";
    const QByteArray source = text.toUtf8();
    return QCoreApplication::translate(context, source.constData());
}

}  // namespace wc
