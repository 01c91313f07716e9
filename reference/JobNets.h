#pragma once
// The nets of one step of a job, derived from its copper.
//
// Copper islands: on each board copper layer ("signal", "power_ground", "mixed"), positive
// features that touch or overlap (within half a nanometre, CopperGeometry's exact shapes) are
// one island. A layer of negative polarity is a plane: the whole layer is one island, and its
// drawn features are clearances in it.
// Joins: a plated hole (a pad or slot of a drill layer whose ".drill" is not "non_plated")
// joins the islands it touches on every copper layer its drill span covers. On a positive layer
// a hole touches copper that its circle reaches and that no later clear-polarity feature cuts
// away at the hole's centre; on a plane it joins the plane unless a clearance covers its centre
// (a thermal relief leaves the centre uncovered, so a hole in one is joined).
// Names: a net takes the Gerber X2 name its features carry (".net"); copper that joins
// features of two names is one net, named after the first, and is reported as a short. Nets of
// the same X2 name are one net even where this step's copper does not join them (the designer's
// intent: the join may lie on a layer that was not supplied). Without X2 names, a netlist's test
// points name the net their pad lies on; what remains is numbered "$1", "$2"… in order of the
// matrix and the features.
// Against a netlist, the differences are listed, on the copper's own connectivity (before any
// name joins it): an open where one net's test points lie on separate pieces of copper, a short
// where one piece of copper holds test points of several nets.
//
// Limits: clear-polarity features on positive layers cut a hole's connection but do not split
// an island; a plane is never split by its clearances; copper of other steps (step-and-repeat)
// is not looked at.

#include <map>
#include <string>
#include <vector>

#include "EngineJob.h"
#include "Ipc356.h"
#include "Korvo_Analysis_types.h"

namespace wcref {

// Where copper and a netlist disagree; `points` are the test points involved (two for an open:
// the same net on separate copper; two for a short: different nets on one copper).
struct NetDifference {
    enum Kind { open, short_circuit } kind = open;
    std::vector<std::string> nets;      // the netlist's nets (one for an open, two for a short)
    std::vector<Korvo::API::point> at;  // test point positions, nanometres
    std::vector<Korvo::API::feature_ref> features;  // the copper under the points, when found
};

struct StepNets {
    std::vector<std::string> names;              // net index -> name
    std::map<std::string, std::vector<int>> of;  // layer -> net per feature (index order), -1
                                                 // for no copper (clearances, texts, NPTH)
    std::vector<NetDifference> differences;
    bool named_by_files = false;  // names came from X2 attributes or a netlist

    // The net name of a feature, empty when it has none.
    std::string nameOf(const std::string& layer, size_t feature_index) const;
};

class JobNets {
public:
    // `netlist` may be empty. The step's layers are looked up by the job's matrix.
    static StepNets derive(const EngineJob& job, const EngineStep& step,
                           const std::vector<TestPoint>& netlist);
};

}  // namespace wcref
