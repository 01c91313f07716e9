#pragma once
// The check-list service: a check handed over whole instead of being run layer by layer by the
// dialog. A real service reads the one-line parameter string and the exported job folder; the
// record, tests, ranges and scope travel beside them so that an in-process service needs no
// parser of its own.

#include <map>
#include <string>
#include <vector>

#include "Korvo_Analysis_types.h"
#include "progress_value.h"

namespace Korvo {
namespace CheckList {

enum class service_answer : int {
    done = 0,    // `result` holds the check's result per layer
    busy = 1,    // another check is under way; nothing was run
    failed = 2,  // the check could not be run (logged)
};

struct signal_check_request {
    std::string job;
    std::string step;
    std::string job_folder;  // where the job is exported and the check list is written
    std::string parameters;  // the one-line parameter string, distances as typed
    API::signal_check_params params;
    std::vector<API::signal_layers_checks_list> tests;
    std::map<API::signal_layers_checks_items, API::signal_check_range> ranges;
    int scope = 0;
};

// Runs a signal layer check on the service; blocks until it is done. Safe to call from a worker.
service_answer runSignalLayerCheckList(const signal_check_request& request,
                                       API::signal_check_result_map& result,
                                       COMMON::progress_value<void>* progress);

}  // namespace CheckList
}  // namespace Korvo
