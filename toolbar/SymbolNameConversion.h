#pragma once
// A symbol name as the user typed it, in the engine's spelling. Used when the host leaves the
// conversion to the popup (its unit flag is zero).

#include <string>

namespace wc {

// Runs of digits and points are numbers, everything else is kept as it stands. A number
// without a fraction stays exactly as typed; one with a fraction becomes its integer part, a
// point and the fraction times 1000 rounded to an integer. The fraction is printed without
// leading zeros on purpose: "r10.05" becomes "r10.50" and "10.005" becomes "10.5".
std::string typedSymbolToEngine(const std::string& typed);

}  // namespace wc
