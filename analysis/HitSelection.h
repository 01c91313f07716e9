#pragma once
// The results viewer's "Selection": the features of the hit being shown are selected in the job,
// and the previous hit's selection is cleared first, so that only one hit's features are ever
// selected by the viewer.

#include <QString>
#include <string>
#include <vector>

#include "Korvo_Analysis_types.h"
#include "frame/WidgetCommonExport.h"

namespace wc {

class WIDGET_COMMON_EXPORT HitSelection {
public:
    // Where the features are selected; what was selected elsewhere is cleared first.
    void setJobAndStep(const QString& job, const QString& step);
    const QString& job() const { return job_; }
    const QString& step() const { return step_; }

    // Selects the features of `hit` (none without a job), after clearing the last selection.
    void select(const Korvo::API::check_info& hit);
    void clear();

private:
    QString job_;
    QString step_;
    std::vector<std::string> layers_;  // layers on which features were selected
};

}  // namespace wc
