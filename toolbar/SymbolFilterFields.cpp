#include "SymbolFilterFields.h"

#include <QRegularExpression>

#include "SymbolNameConversion.h"

namespace wc {

QString symbolFieldPattern() {
    return QStringLiteral("^[a-z0-9_.+-/*]*$");
}

SymbolList buildSymbolList(const SymbolField& include, const SymbolField& exclude,
                           const std::function<QString(const QString&)>& host_convert) {
    SymbolList list;
    list.mode = include.text.isEmpty() ? 0 : 1;
    const SymbolField& source = list.mode == 1 ? include : exclude;
    if (source.text.isEmpty()) {
        return list;
    }
    QStringList names;
    if (source.text.startsWith(QLatin1Char('*')) && source.text.endsWith(QLatin1Char('*')) &&
        source.expand) {
        for (const QString& entry : source.expand(source.text)) {
            names << entry.section(QLatin1Char('('), 0, 0).trimmed();
        }
    } else {
        names = source.text.split(QLatin1Char(';'), Qt::SkipEmptyParts);
    }
    for (const QString& raw : names) {
        const QString name = raw.trimmed();
        if (name.isEmpty()) {
            continue;
        }
        auto known = source.names.find(name);
        if (known != source.names.end()) {
            list.symbols.push_back(known->second);
        } else if (host_convert) {
            list.symbols.push_back(host_convert(name).toStdString());
        } else {
            list.symbols.push_back(typedSymbolToEngine(name.toStdString()));
        }
    }
    return list;
}

QString addSymbolToField(const QString& field, const QString& symbol) {
    if (field.isEmpty()) {
        return symbol;
    }
    // Containment, not equality: a symbol inside a longer name counts as present.
    if (field.contains(symbol, Qt::CaseInsensitive)) {
        return field;
    }
    return field + QLatin1Char(';') + symbol;
}

QString reexpressSymbolNumbers(const QString& name, const std::function<double(double)>& convert) {
    static const QRegularExpression number(QStringLiteral("[0-9]+(?:\\.[0-9]+)?|\\.[0-9]+"));
    QString out;
    int last = 0;
    auto it = number.globalMatch(name);
    while (it.hasNext()) {
        const QRegularExpressionMatch match = it.next();
        out += name.mid(last, match.capturedStart() - last);
        out += QString::number(convert(match.captured().toDouble()), 'g', 6);
        last = match.capturedEnd();
    }
    return out + name.mid(last);
}

QString reexpressSymbolField(const QString& text, SymbolNameMap& names,
                             const std::function<QString(const std::string&)>& show,
                             const std::function<double(double)>& convert) {
    SymbolNameMap shown;
    QStringList parts = text.split(QLatin1Char(';'));
    for (QString& part : parts) {
        auto known = names.find(part);
        if (known == names.end()) {
            part = reexpressSymbolNumbers(part, convert);
            continue;
        }
        part = show(known->second);
        shown[part] = known->second;
    }
    names = shown;
    return parts.join(QLatin1Char(';'));
}

bool isDefaultFilter(const FilterFace& face) {
    return face.feature_type == 127 && face.include_symbols.isEmpty() &&
           face.exclude_symbols.isEmpty() && face.profile == 0 &&
           face.include_attributes.isEmpty() && face.exclude_attributes.isEmpty();
}

}  // namespace wc
