#pragma once
// The waivers of one analysis, job and step as a JSON file, to hand to a colleague or keep with
// the job. Writing goes through a temporary file, so a failed write leaves nothing half written;
// reading refuses a file that is not JSON, not of the waiver file's shape, or for another kind,
// job or step, and then changes nothing.

#include <QString>
#include <vector>

#include "HitTriage.h"
#include "Korvo_Triage_types.h"
#include "frame/WidgetCommonExport.h"

namespace wc {

// False with the reason in `error` (the system's own words, naming the file).
WIDGET_COMMON_EXPORT bool writeWaiverFile(const QString& path, const TriageScope& scope,
                                          const std::vector<Korvo::API::analysis_waiver>& waivers,
                                          QString* error);
// The file's waivers, ids cleared, with the scope's kind, job and step; `waivers` is replaced
// only on success.
WIDGET_COMMON_EXPORT bool readWaiverFile(const QString& path, const TriageScope& scope,
                                         std::vector<Korvo::API::analysis_waiver>& waivers,
                                         QString* error);

}  // namespace wc
