#include "SolderMaskOptChecks.h"

#include "Korvo_UIAPI.h"
#include "frame/EngineInt.h"
#include "frame/FieldCommit.h"
#include "frame/LimitCheck.h"

namespace wc {

QString solderMaskDisplayProblem(const std::vector<LimitedText>& fields, const void* handle) {
    for (const LimitedText& field : fields) {
        if (field.text.isEmpty()) {
            return QStringLiteral("Illegal floating parameter : Empty text-box ! ");
        }
        if (!withinZeroTo(handle, field.text, field.upper_mil)) {
            return QStringLiteral("The Value : ") + field.text +
                   QStringLiteral(" is outside of (0,") + limitText(handle, field.upper_mil) +
                   QStringLiteral(") !");
        }
    }
    return QString();
}

QString solderMaskEngineProblem(const Korvo::API::solder_mask_DFM_params& params,
                                const EngineCheckedTexts& texts, const void* handle) {
    // Both names and "from 0" even where negatives pass: the messages are kept on purpose.
    const QString lower = limitText(handle, 0.0);
    const QString upper = limitText(handle, 8.0);
    const QString add_name = QStringLiteral("Prevent vertical flow add");
    const QString del_name = QStringLiteral("Prevent vertical flow del");

    if (params.prevent_vertical_flow_add < -kSolderMaskEngineLimit ||
        params.prevent_vertical_flow_add > kSolderMaskEngineLimit) {
        return illegalFloatMessage(add_name, texts.flow_add, lower, upper);
    }
    const std::pair<int32_t, const QString*> unsigned_checks[] = {
        {params.prevent_vertical_flow_delete, &texts.flow_del},
        {params.partial_clearance, &texts.partial_clearance},
        {params.gas_resize_without_drill, &texts.gas_no_drill},
        {params.gas_resize_with_drill, &texts.gas_has_drill},
        {params.partial_and_gas_resize, &texts.partial_gas},
    };
    for (const auto& check : unsigned_checks) {
        // Compared unsigned, so a negative value fails as a huge one.
        if (static_cast<uint32_t>(check.first) > static_cast<uint32_t>(kSolderMaskEngineLimit)) {
            return illegalFloatMessage(del_name, *check.second, lower, upper);
        }
    }
    return QString();
}

std::map<int32_t, int32_t> rangeTableMap(const RangeRows& rows, const void* handle) {
    std::map<int32_t, int32_t> map;
    for (const auto& row : rows) {
        bool range_ok = false;
        bool value_ok = false;
        const double range = row.first.toDouble(&range_ok);
        const double value = row.second.toDouble(&value_ok);
        if (!range_ok || !value_ok) {
            continue;
        }
        map[wc::toEngineInt(Korvo::UIAPI::getUnitAPIData(handle, 1, range))] =
            wc::toEngineInt(Korvo::UIAPI::getUnitAPIData(handle, 1, value));
    }
    return map;
}

OptSummary summariseSolderMaskOpt(const Korvo::API::solder_mask_DFM_result_map& result) {
    OptSummary summary;
    for (const auto& item : result) {
        for (const auto& record : item.second) {
            summary.red += static_cast<int>(record.red.size());
            summary.yellow += static_cast<int>(record.yellow.size());
            summary.green += static_cast<int>(record.green.size());
            summary.other += static_cast<int>(record.other.size());
        }
    }
    return summary;
}

}  // namespace wc
