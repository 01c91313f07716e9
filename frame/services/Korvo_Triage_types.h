#pragma once
// Records of the result database beyond the stored checks: the waivers with which users judge hits
// harmless, and the list of stored runs a run is compared with.

#include <string>
#include <vector>

namespace Korvo {
namespace API {

// What a waiver covers: one hit (by its identity), or every hit of one check item between the
// same two nets, on any layer.
enum waiver_scope : int { waive_hit = 0, waive_net_pair = 1 };

// One reason given for a waiver, with who gave it and when ("yyyy.MM.dd hh:mm:ss").
struct waiver_reason {
    std::string reason;
    std::string user;
    std::string time;
};

// A judgement that hits are harmless, kept per analysis kind, job and step. Storing a waiver that
// covers the same hits as a stored one keeps the stored one and adds the new reason to its
// history, so two users waiving the same hit at once lose neither reason.
struct analysis_waiver {
    int id = -1;       // given by the database
    std::string kind;  // the analysis: "SignalLayer", ...
    std::string job;
    std::string step;
    waiver_scope scope = waive_hit;
    int item = 0;                   // the check item's enumeration value
    std::string layer;              // the hit's layer (one-hit waivers; empty for net pairs)
    std::vector<std::string> nets;  // ascending; the two nets of a net-pair waiver
    std::string identity;           // the hit's identity text (one-hit waivers)
    // The latest reason, who gave it and when; every reason, the latest last.
    std::string reason;
    std::string user;
    std::string time;
    std::vector<waiver_reason> history;
};

// A stored run of an analysis: what the result database lists to compare with.
struct analysis_run_info {
    int id = -1;
    std::string kind;
    std::string job;
    std::string step;
    std::string time;  // "yyyy.MM.dd hh:mm:ss"
    std::string description;
};

}  // namespace API
}  // namespace Korvo
