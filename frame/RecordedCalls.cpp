#include "RecordedCalls.h"

#include "Korvo_API.h"
#include "Korvo_DB.h"

namespace wc {

std::string recordedGetGraphics(const std::string& job, std::vector<std::string>& steps,
                                std::vector<Korvo::API::layer_info>& layers) {
    if (Korvo::DB::get_SaveFlag()) {
        Korvo::DB::get_graphics_db_save(job, steps, layers);
    }
    return Korvo::API::get_graphics(job, steps, layers);
}

std::string recordedGetMatrix(const std::string& job, std::vector<std::string>& steps,
                              std::vector<Korvo::API::layer_info>& layers) {
    if (Korvo::DB::get_SaveFlag()) {
        Korvo::DB::get_matrix_db_save(job, steps, layers);
    }
    return Korvo::API::get_matrix(job, steps, layers);
}

bool recordedCreateStep(const std::string& job, const std::string& step, int type) {
    if (Korvo::DB::get_SaveFlag()) {
        Korvo::DB::create_step_db_save(job, step, type);
    }
    return Korvo::API::create_step(job, step, type);
}

bool recordedClearSelectedFeatures(const std::string& job, const std::string& step,
                                   const std::string& layer) {
    if (Korvo::DB::get_SaveFlag()) {
        Korvo::DB::clear_selected_features_db_save(job, step, layer);
    }
    return Korvo::API::clear_selected_features(job, step, layer);
}

}  // namespace wc
