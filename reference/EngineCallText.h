#pragma once
// Text forms of engine arguments for the call log of the reference engine.

#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "Korvo_API.h"

namespace wcref {
namespace calltext {

std::string number(double value);  // shortest form: "3", "2.5", "-1e+09"
std::string number(int value);
std::string flag(bool value);                                       // "true" / "false"
std::string joined(const std::vector<std::string>& parts);          // joined by ";"
std::string point(const Korvo::API::point& p);                      // "(x,y)"
std::string points(const std::vector<Korvo::API::point>& outline);  // "(x,y);(x,y)"
std::string intSet(const std::set<int>& values);                    // "1;2;5"
// "name{key=value,key=value}"
std::string record(const std::string& name,
                   const std::vector<std::pair<std::string, std::string>>& fields);
std::string attributes(const std::map<std::string, std::string>& map);
std::string feature(const Korvo::API::featureInfo& f);
std::string repeatRows(const std::vector<Korvo::API::step_repeat_op>& rows);
std::string checkParams(const Korvo::API::signal_check_params& p);
std::string checkParams(const Korvo::API::dms_signal_check_params& p);
std::string dfmParams(const Korvo::API::signal_layer_DFM_op_params& p);
std::string dfmParams(const Korvo::API::solder_mask_DFM_params& p);
std::string dfmParams(const Korvo::API::teardrop_create_DFM_op_params& p);
std::string dfmParams(const Korvo::API::NFP_removal_DFM_op_params& p);

}  // namespace calltext
}  // namespace wcref
