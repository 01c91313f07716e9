#include "Recorder.h"

#include <glog/logging.h>

#include "HostSettings.h"
#include "Korvo_DB.h"

namespace wcref {

Recorder& Recorder::instance() {
    static Recorder recorder;
    return recorder;
}

bool Recorder::saveFlag() const {
    std::lock_guard<std::mutex> guard(lock_);
    return save_flag_;
}

void Recorder::setSaveFlag(bool on) {
    std::lock_guard<std::mutex> guard(lock_);
    save_flag_ = on;
}

void Recorder::record(std::string call) {
    LOG(INFO) << "recorded " << call;
    std::lock_guard<std::mutex> guard(lock_);
    records_.push_back(std::move(call));
}

std::vector<std::string> Recorder::records() const {
    std::lock_guard<std::mutex> guard(lock_);
    return records_;
}

void Recorder::clear() {
    std::lock_guard<std::mutex> guard(lock_);
    records_.clear();
}

void setSaveFlag(bool on) {
    Recorder::instance().setSaveFlag(on);
}

std::vector<std::string> recordedSaves() {
    return Recorder::instance().records();
}

void clearRecordedSaves() {
    Recorder::instance().clear();
}

}  // namespace wcref

namespace Korvo {
namespace DB {

bool get_SaveFlag() {
    return wcref::Recorder::instance().saveFlag();
}

void get_graphics_db_save(const std::string& job, std::vector<std::string>&,
                          std::vector<API::layer_info>&) {
    wcref::Recorder::instance().record("get_graphics_db_save(" + job + ")");
}

void get_matrix_db_save(const std::string& job, std::vector<std::string>&,
                        std::vector<API::layer_info>&) {
    wcref::Recorder::instance().record("get_matrix_db_save(" + job + ")");
}

void create_step_db_save(const std::string& job, const std::string& step, int type) {
    wcref::Recorder::instance().record("create_step_db_save(" + job + ", " + step + ", " +
                                       std::to_string(type) + ")");
}

void clear_selected_features_db_save(const std::string& job, const std::string& step,
                                     const std::string& layer) {
    wcref::Recorder::instance().record("clear_selected_features_db_save(" + job + ", " + step +
                                       ", " + layer + ")");
}

}  // namespace DB
}  // namespace Korvo
