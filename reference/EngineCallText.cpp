#include "EngineCallText.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace wcref {
namespace calltext {

std::string number(double value) {
    // Engine coordinates are mostly whole nanometres: print them without an exponent.
    if (std::fabs(value) < 1e15 && value == std::trunc(value)) {
        return std::to_string(static_cast<long long>(value));
    }
    char buffer[40];
    // The shortest precision that reads back as the same value.
    for (int precision = 1; precision <= 17; ++precision) {
        std::snprintf(buffer, sizeof buffer, "%.*g", precision, value);
        if (std::strtod(buffer, nullptr) == value) {
            break;
        }
    }
    return buffer;
}

std::string number(int value) {
    return std::to_string(value);
}

std::string flag(bool value) {
    return value ? "true" : "false";
}

std::string joined(const std::vector<std::string>& parts) {
    std::string text;
    for (size_t k = 0; k < parts.size(); ++k) {
        if (k > 0) {
            text += ';';
        }
        text += parts[k];
    }
    return text;
}

std::string point(const Korvo::API::point& p) {
    return "(" + number(p.x) + "," + number(p.y) + ")";
}

std::string points(const std::vector<Korvo::API::point>& outline) {
    std::vector<std::string> parts;
    parts.reserve(outline.size());
    for (const Korvo::API::point& p : outline) {
        parts.push_back(point(p));
    }
    return joined(parts);
}

std::string intSet(const std::set<int>& values) {
    std::vector<std::string> parts;
    for (int v : values) {
        parts.push_back(std::to_string(v));
    }
    return joined(parts);
}

std::string record(const std::string& name,
                   const std::vector<std::pair<std::string, std::string>>& fields) {
    std::string text = name + "{";
    for (size_t k = 0; k < fields.size(); ++k) {
        if (k > 0) {
            text += ',';
        }
        text += fields[k].first + "=" + fields[k].second;
    }
    return text + "}";
}

std::string attributes(const std::map<std::string, std::string>& map) {
    std::vector<std::pair<std::string, std::string>> fields(map.begin(), map.end());
    return record("attributes", fields);
}

std::string feature(const Korvo::API::featureInfo& f) {
    return record("feature", {{"id", number(f.id)},
                              {"type", number(static_cast<int>(f.type))},
                              {"symbol", f.symbol},
                              {"start", point(f.start)}});
}

std::string repeatRows(const std::vector<Korvo::API::step_repeat_op>& rows) {
    std::vector<std::string> parts;
    for (const Korvo::API::step_repeat_op& r : rows) {
        parts.push_back(record("row", {{"step", r.step_name},
                                       {"x", number(r.x)},
                                       {"y", number(r.y)},
                                       {"dx", number(r.dx)},
                                       {"dy", number(r.dy)},
                                       {"nx", number(r.nx)},
                                       {"ny", number(r.ny)},
                                       {"angle", number(r.angle)},
                                       {"mirror", flag(r.mirror)},
                                       {"selection", intSet(r.selection)}}));
    }
    return joined(parts);
}

std::string checkParams(const Korvo::API::signal_check_params& p) {
    return record("params", {{"layers", p.layers},
                             {"spacing", number(p.spacing)},
                             {"drill_to_copper", number(p.drill_to_copper)},
                             {"rout_to_copper", number(p.rout_to_copper)},
                             {"sliver_min", number(p.sliver_min)},
                             {"min_pad_overlap", number(p.min_pad_overlap)},
                             {"apply_to", p.apply_to},
                             {"mode", number(p.mode)}});
}

std::string checkParams(const Korvo::API::dms_signal_check_params& p) {
    return record("dms", {{"job", p.job},
                          {"step", p.step},
                          {"layers", p.params.layers},
                          {"tests", number(static_cast<int>(p.tests.size()))},
                          {"scope", number(p.scope)}});
}

std::string dfmParams(const Korvo::API::signal_layer_DFM_op_params& p) {
    return record("params", {{"pth_ar_min", number(p.pth_ar_min)},
                             {"pth_ar_opt", number(p.pth_ar_opt)},
                             {"via_ar_min", number(p.via_ar_min)},
                             {"via_ar_opt", number(p.via_ar_opt)},
                             {"spacing_min", number(p.spacing_min)},
                             {"spacing_opt", number(p.spacing_opt)},
                             {"pad_up", flag(p.pad_up)},
                             {"shave", flag(p.shave)},
                             {"ranges", number(static_cast<int>(p.ranges.size()))},
                             {"scope", number(p.scope)}});
}

std::string dfmParams(const Korvo::API::solder_mask_DFM_params& p) {
    return record("params", {{"clearance_min", number(p.clearance_min)},
                             {"clearance_opt", number(p.clearance_opt)},
                             {"coverage_min", number(p.coverage_min)},
                             {"coverage_opt", number(p.coverage_opt)},
                             {"bridge_size", number(p.bridge_size)},
                             {"ranges", number(static_cast<int>(p.ranges.size()))},
                             {"scope", number(p.scope)}});
}

std::string dfmParams(const Korvo::API::teardrop_create_DFM_op_params& p) {
    return record("params", {{"drilled_pads", flag(p.drilled_pads)},
                             {"undrilled_pads", flag(p.undrilled_pads)},
                             {"annular_ring_min", number(p.annular_ring_min)},
                             {"teardrop_type", number(p.teardrop_type)},
                             {"ranges", number(static_cast<int>(p.ranges.size()))},
                             {"scope", number(p.scope)},
                             {"report_only", flag(p.report_only)}});
}

std::string dfmParams(const Korvo::API::NFP_removal_DFM_op_params& p) {
    std::vector<std::string> kinds;
    for (int32_t kind : p.pad_kinds) {
        kinds.push_back(number(kind));
    }
    return record("params", {{"pth", flag(p.pth)},
                             {"npth", flag(p.npth)},
                             {"via", flag(p.via)},
                             {"remove_undrilled_pads", flag(p.remove_undrilled_pads)},
                             {"apply_to", number(p.apply_to)},
                             {"action", number(p.action)},
                             {"pad_kinds", joined(kinds)},
                             {"ranges", number(static_cast<int>(p.ranges.size()))},
                             {"scope", number(p.scope)}});
}

}  // namespace calltext
}  // namespace wcref
