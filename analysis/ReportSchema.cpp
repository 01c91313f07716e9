#include "ReportSchema.h"

#include <QJsonArray>
#include <QRegularExpression>
#include <QSet>
#include <cmath>

namespace wc {

namespace {

bool hasType(const QJsonValue& value, const QString& type) {
    if (type == QLatin1String("integer")) {
        return value.isDouble() && std::floor(value.toDouble()) == value.toDouble();
    }
    static const QHash<QString, QJsonValue::Type> types{
        {QStringLiteral("object"), QJsonValue::Object},
        {QStringLiteral("array"), QJsonValue::Array},
        {QStringLiteral("string"), QJsonValue::String},
        {QStringLiteral("number"), QJsonValue::Double},
        {QStringLiteral("boolean"), QJsonValue::Bool},
        {QStringLiteral("null"), QJsonValue::Null}};
    return types.value(type, QJsonValue::Undefined) == value.type();
}

class Validator {
public:
    explicit Validator(const QJsonObject& root) : root_(root) {}
    QStringList problems;

    void check(const QJsonValue& schema, const QJsonValue& value, const QString& at) {
        if (schema.isBool()) {
            if (!schema.toBool()) {
                problems << at + QStringLiteral(": nothing is allowed here");
            }
            return;
        }
        const QJsonObject rules = schema.toObject();
        for (auto rule = rules.begin(); rule != rules.end(); ++rule) {
            apply(rule.key(), rule.value(), rules, value, at);
        }
    }

private:
    void apply(const QString& keyword, const QJsonValue& rule, const QJsonObject& rules,
               const QJsonValue& value, const QString& at) {
        static const QSet<QString> annotations{
            QStringLiteral("$schema"),  QStringLiteral("$id"),     QStringLiteral("$defs"),
            QStringLiteral("$comment"), QStringLiteral("title"),   QStringLiteral("description"),
            QStringLiteral("format"),   QStringLiteral("examples")};
        if (annotations.contains(keyword)) {
            return;
        }
        if (keyword == QLatin1String("$ref")) {
            reference(rule.toString(), value, at);
        } else if (keyword == QLatin1String("type")) {
            type(rule, value, at);
        } else if (keyword == QLatin1String("enum")) {
            if (!rule.toArray().contains(value)) {
                problems << at + QStringLiteral(": not one of the values allowed");
            }
        } else if (keyword == QLatin1String("const")) {
            if (rule != value) {
                problems << at + QStringLiteral(": not the value required");
            }
        } else if (keyword == QLatin1String("properties") ||
                   keyword == QLatin1String("additionalProperties")) {
            members(keyword, rule, rules, value, at);
        } else if (keyword == QLatin1String("required")) {
            for (const QJsonValue& name : rule.toArray()) {
                if (value.isObject() && !value.toObject().contains(name.toString())) {
                    problems << at + QStringLiteral(": \"%1\" is missing").arg(name.toString());
                }
            }
        } else if (keyword == QLatin1String("items") || keyword == QLatin1String("minItems")) {
            items(keyword, rule, value, at);
        } else if (keyword == QLatin1String("minimum")) {
            if (value.isDouble() && value.toDouble() < rule.toDouble()) {
                problems << at + QStringLiteral(": below %1").arg(rule.toDouble());
            }
        } else if (keyword == QLatin1String("pattern")) {
            const QRegularExpression pattern(rule.toString());
            if (value.isString() && !pattern.match(value.toString()).hasMatch()) {
                problems << at + QStringLiteral(": \"%1\" does not match %2")
                                     .arg(value.toString(), rule.toString());
            }
        } else {
            problems << QStringLiteral("schema keyword \"%1\" is not checked").arg(keyword);
        }
    }

    void reference(const QString& pointer, const QJsonValue& value, const QString& at) {
        if (!pointer.startsWith(QLatin1String("#/"))) {
            problems << QStringLiteral("schema reference \"%1\" is not checked").arg(pointer);
            return;
        }
        QJsonValue target = root_;
        for (QString part : pointer.mid(2).split(QLatin1Char('/'))) {
            part.replace(QLatin1String("~1"), QLatin1String("/"));
            part.replace(QLatin1String("~0"), QLatin1String("~"));
            target = target.toObject().value(part);
        }
        if (target.isUndefined()) {
            problems << QStringLiteral("schema reference \"%1\" leads nowhere").arg(pointer);
            return;
        }
        check(target, value, at);
    }

    void type(const QJsonValue& rule, const QJsonValue& value, const QString& at) {
        const QJsonArray allowed = rule.isArray() ? rule.toArray() : QJsonArray{rule};
        for (const QJsonValue& one : allowed) {
            if (hasType(value, one.toString())) {
                return;
            }
        }
        QStringList names;
        for (const QJsonValue& one : allowed) {
            names << one.toString();
        }
        problems
            << at + QStringLiteral(": not of the type %1").arg(names.join(QLatin1String(" or ")));
    }

    void members(const QString& keyword, const QJsonValue& rule, const QJsonObject& rules,
                 const QJsonValue& value, const QString& at) {
        const QJsonObject object = value.toObject();
        const QJsonObject known = rules.value(QLatin1String("properties")).toObject();
        const bool additional = keyword == QLatin1String("additionalProperties");
        for (auto member = object.begin(); member != object.end(); ++member) {
            const QString place = at + QLatin1Char('.') + member.key();
            if (!additional && known.contains(member.key())) {
                check(known.value(member.key()), member.value(), place);
            } else if (additional && !known.contains(member.key())) {
                check(rule, member.value(), place);
            }
        }
    }

    void items(const QString& keyword, const QJsonValue& rule, const QJsonValue& value,
               const QString& at) {
        const QJsonArray array = value.toArray();
        if (keyword == QLatin1String("minItems")) {
            if (value.isArray() && array.size() < rule.toInt()) {
                problems << at + QStringLiteral(": fewer than %1 items").arg(rule.toInt());
            }
            return;
        }
        for (int i = 0; i < array.size(); ++i) {
            check(rule, array[i], at + QStringLiteral("[%1]").arg(i));
        }
    }

    QJsonObject root_;
};

}  // namespace

QStringList schemaProblems(const QJsonObject& schema, const QJsonValue& document) {
    Validator validator(schema);
    validator.check(schema, document, QStringLiteral("$"));
    return validator.problems;
}

}  // namespace wc
