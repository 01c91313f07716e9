#include "Validators.h"

#include <QByteArray>
#include <QRegExp>
#include <QRegExpValidator>
#include <QTextCodec>

namespace wc {

QString floatPattern() {
    return QStringLiteral(
        "[-]?[1-9][0-9]{0,14}|[-]?[0][.][0-9]{0,5}|[-]?[1-9][0-9]{0,}[.][0-9]{1,5}");
}

QString namePattern() {
    return QStringLiteral("^[a-z0-9_+.;-]{0,64}$");
}

QString noCjkPattern() {
    // The range ends are kept as the GBK codes of the first and last ideograph so the pattern
    // reads the same as the one the host's other modules build.
    static const char bytes[] = {'\x5E', '\x5B', '\x5E', '\xD2', '\xBB', '\x2D', '\xFD',
                                 '\x9B', '\x5D', '\x7B', '\x30', '\x2C', '\x7D', '\x24'};
    const QByteArray gbk(bytes, sizeof bytes);
    if (QTextCodec* codec = QTextCodec::codecForName("GBK")) {
        return codec->toUnicode(gbk);
    }
    // Without a GBK codec the same range is written out directly.
    return QStringLiteral("^[^\u4E00-\u9FA5]{0,}$");
}

namespace {

QRegExpValidator* makeValidator(const QString& pattern, QObject* parent) {
    return new QRegExpValidator(QRegExp(pattern, Qt::CaseSensitive), parent);
}

}  // namespace

QRegExpValidator* makeFloatValidator(QObject* parent) {
    return makeValidator(floatPattern(), parent);
}

QRegExpValidator* makeNameValidator(QObject* parent) {
    return makeValidator(namePattern(), parent);
}

QRegExpValidator* makeNoCjkValidator(QObject* parent) {
    return makeValidator(noCjkPattern(), parent);
}

}  // namespace wc
