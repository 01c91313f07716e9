#pragma once
// A language in which every text of one translation context reads "[text]": installed for the
// length of a scope, so that a test sees which texts a language change reached.

#include <QCoreApplication>
#include <QTranslator>

namespace wctest {

class MarkingTranslator : public QTranslator {
public:
    explicit MarkingTranslator(const char* context) : context_(context) {
        QCoreApplication::installTranslator(this);
    }
    ~MarkingTranslator() override { QCoreApplication::removeTranslator(this); }

    bool isEmpty() const override { return false; }
    QString translate(const char* context, const char* source, const char*, int) const override {
        return qstrcmp(context, context_) == 0
                   ? QLatin1Char('[') + QString::fromUtf8(source) + QLatin1Char(']')
                   : QString();
    }

private:
    const char* context_;
};

}  // namespace wctest
