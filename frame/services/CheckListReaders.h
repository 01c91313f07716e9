#pragma once
// Readers of the check lists that the check-list service writes below a job's folder.

#include <map>
#include <string>

#include "Korvo_Analysis_types.h"

class SignalLayersCheckListReader {
public:
    // Reads the header and result files into one result per layer; false when either file is
    // missing or unreadable.
    static bool parse(const std::string& job_folder, const std::string& header_file,
                      const std::string& result_file, Korvo::API::signal_check_result_map& result);
};
