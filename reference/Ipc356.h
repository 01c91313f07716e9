#pragma once
// An IPC-D-356 netlist: the test points of a bare board, each with its net, position and side.
//
// Read are the "317" (through-hole) and "327" (surface) test records in their fixed columns:
// net name in columns 4-17, reference and pin in 21-31, "D" hole diameter in 34-38, access code
// "A00" (both sides), "A01" (top) or any other number (bottom) in 40-42, "X" and "Y" with sign
// and six digits in 43-58. Units come from the "P  UNITS" parameter: "CUST 0" or "CUST 2" (and
// no parameter) mean 0.0001 inch, "CUST 1" and "SI" 0.001 mm. Comment ("C"), parameter ("P")
// and other records are skipped; "999" ends the data. Continuation records ("0" in column 3 of
// a "3x7") are read as test points of their own.

#include <string>
#include <vector>

#include "Korvo_API_types.h"

namespace wcref {

struct TestPoint {
    std::string net;  // "N/C" for a point of no net
    std::string reference;
    Korvo::API::point at;  // nanometres
    double hole = 0.0;     // drill diameter, nanometres; 0 for a surface pad
    enum Side { both, top, bottom } side = both;
};

class Ipc356 {
public:
    // True when the text reads as a netlist; otherwise false with the reason in `message`
    // (the line that could not be read, or that no test point was found).
    static bool parse(const std::string& text, std::vector<TestPoint>& points,
                      std::string& message);
    static bool read(const std::string& path, std::vector<TestPoint>& points, std::string& message);
    // Whether a file's first lines look like a netlist (a "P  JOB", "P  UNITS" or 3x7 record).
    static bool looksLikeNetlist(const std::string& head);
};

}  // namespace wcref
