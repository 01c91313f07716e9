#pragma once
// Checks a JSON document against a JSON Schema (draft 2020-12) for the keywords the report
// schema (docs/report-schema.json) uses: type, enum, const, properties, required,
// additionalProperties, items, minItems, minimum, pattern and $ref to a place in the same
// schema, besides the annotations ($schema, $id, $defs, $comment, title, description, format,
// examples). A schema that uses any other keyword is refused, so that it never seems to check
// what this validator leaves unchecked.

#include <QJsonObject>
#include <QJsonValue>
#include <QStringList>

#include "frame/WidgetCommonExport.h"

namespace wc {

// Every place where `document` breaks `schema`, as "$.hits[3].value: ...", and every keyword of
// the schema that is not checked; empty when the document conforms.
WIDGET_COMMON_EXPORT QStringList schemaProblems(const QJsonObject& schema,
                                                const QJsonValue& document);

}  // namespace wc
