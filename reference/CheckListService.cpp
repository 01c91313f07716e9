// The reference check-list service: it runs the same signal layer check in process, layer by
// layer through Korvo::API::signal_layers_checks on the layers the record names, and answers
// busy while another check is under way. It reads neither the parameter string nor an exported
// job folder; what the check computes is what the reference engine's check computes.

#include "CheckListService.h"

#include <glog/logging.h>

#include <atomic>

#include "Korvo_API.h"
#include "Korvo_UIAPI.h"

namespace Korvo {
namespace CheckList {
namespace {

std::atomic<bool>& running() {
    static std::atomic<bool> flag{false};
    return flag;
}

}  // namespace

service_answer runSignalLayerCheckList(const signal_check_request& request,
                                       API::signal_check_result_map& result,
                                       COMMON::progress_value<void>* progress) {
    bool expected = false;
    if (!running().compare_exchange_strong(expected, true)) {
        LOG(INFO) << "check-list service busy; refused a check of " << request.job;
        return service_answer::busy;
    }
    struct Release {
        ~Release() { running() = false; }
    } release;

    LOG(INFO) << "check-list service: " << request.parameters;
    const std::vector<std::string> layers =
        UIAPI::getAnalyzeAndDFMLayers(request.job, request.params.layers);
    API::signal_check_result_map answer;
    for (const std::string& layer : layers) {
        if (progress != nullptr && progress->is_stop_requested()) {
            break;
        }
        COMMON::progress_value<API::signal_check_result_map> block;
        if (!API::signal_layers_checks(request.job, request.step, layer, request.params,
                                       request.tests, request.ranges, answer[layer], &block,
                                       request.scope)) {
            LOG(ERROR) << "check-list service: the check of layer " << layer << " failed";
            return service_answer::failed;
        }
    }
    result = std::move(answer);
    return service_answer::done;
}

}  // namespace CheckList
}  // namespace Korvo
