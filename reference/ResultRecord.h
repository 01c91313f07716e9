#pragma once
// The two JSON texts a stored signal layer check is kept as in the result database: its parameter
// record and its result. The readers take a database row, which may have been damaged or edited by
// hand, so they answer false and leave their output unchanged for any text the writers could not
// have produced.

#include <QString>

#include "Korvo_Analysis_types.h"

namespace wcref {
namespace resultrecord {

QString paramsToJson(const Korvo::API::dms_signal_check_params& record);
bool paramsFromJson(const QString& text, Korvo::API::dms_signal_check_params& record);
QString resultToJson(const Korvo::API::signal_check_result_map& result);
bool resultFromJson(const QString& text, Korvo::API::signal_check_result_map& result);

}  // namespace resultrecord
}  // namespace wcref
