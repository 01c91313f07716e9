#pragma once
// Operation recorder: when saving is on, a dialog calls the twin of a recorded engine operation
// with identical arguments immediately before the operation itself.

#include <map>
#include <string>
#include <vector>

#include "Korvo_API_types.h"

namespace Korvo {
namespace DB {

bool get_SaveFlag();
void get_graphics_db_save(const std::string& job, std::vector<std::string>& steps,
                          std::vector<API::layer_info>& layers);
void get_matrix_db_save(const std::string& job, std::vector<std::string>& steps,
                        std::vector<API::layer_info>& layers);
void create_step_db_save(const std::string& job, const std::string& step, int type);
void change_matrix_db_save(const std::string& job, int row, int new_row, const std::string& layer,
                           const API::layer_info& info);
void move_layer_poi_db_save(const std::string& job, int from, int to);
void clear_selected_features_db_save(const std::string& job, const std::string& step,
                                     const std::string& layer);

}  // namespace DB
}  // namespace Korvo
