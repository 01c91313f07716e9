#pragma once
// How the hit table writes a hit, without a widget: one text per column, lengths in the display
// unit. The table shows these texts, the text filter matches them and sorting orders by them, so
// what the user reads is what the filter sees.

#include <QRegularExpression>
#include <QString>
#include <QStringList>
#include <functional>

#include "ResultsModel.h"
#include "frame/WidgetCommonExport.h"

namespace wc {

enum HitColumn : int {
    IndexColumn = 0,
    ValueColumn,
    RequiredColumn,
    DifferenceColumn,
    LayerColumn,
    LocationColumn,
    NetsColumn,
    StateColumn,
    HitColumnCount
};

// "GND" for a same-net pair, "GND / VCC" between two nets, empty where the nets are unknown.
WIDGET_COMMON_EXPORT QString netsText(const Korvo::API::check_info& hit);

struct WIDGET_COMMON_EXPORT HitColumns {
    double display_per_engine = 1.0;  // display units per engine unit
    int decimals = 3;
    QStringList layer_names;  // the model's layers as listed
    // The state of a hit by its number ("new", "waived: ..."); empty without triage.
    std::function<QString(std::size_t number)> state;

    // The text of `column`; the index column shows `position` + 1. The required value and the
    // difference stay empty where the item has no required value.
    QString text(int column, const HitRef& hit, std::size_t position) const;
    // A number to order the numeric columns by (value, required, difference, location's x).
    double number(int column, const HitRef& hit) const;
    static bool numeric(int column);
    // True when the text of any column but the index matches.
    bool matches(const QRegularExpression& expression, const HitRef& hit) const;
};

}  // namespace wc
