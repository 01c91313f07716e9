#include "Translate.h"

#include <QCoreApplication>
#include <QObject>

namespace wc {

QString translateFor(const QObject* owner, const QString& text) {
    const char* context = owner != nullptr ? owner->metaObject()->className() : "QObject";
    const QByteArray source = text.toUtf8();
    return QCoreApplication::translate(context, source.constData());
}

QString translateFor(const QObject* owner, const char* text, int n) {
    const char* context = owner != nullptr ? owner->metaObject()->className() : "QObject";
    return QCoreApplication::translate(context, text, nullptr, n);
}

}  // namespace wc
