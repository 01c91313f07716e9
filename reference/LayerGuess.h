#pragma once
// Types a fabrication file as a row of the layer matrix: type, side, polarity, context and its
// place in the stack, from what the file says about itself first and from its name second.
//
// 1. Gerber X2 file attributes: ".FileFunction" (Copper,L<n>,Top|Inr|Bot[,Plane|Signal|Mixed],
//    Soldermask|Legend|Paste,Top|Bot, Profile,NP|P, Plated|NonPlated,<from>,<to>,...) and
//    ".FilePolarity" (Positive|Negative). A function this unit does not know decides nothing.
// 2. File-name conventions: the extensions and suffixes of the common layout programs
//    (.GTL/.GBL/.Gn/.GPn, "-F_Cu", ".front.gbr", ".group<n>.gbr", "_componentmask",
//    "_soldermask", "_componentsilk", "EtchLayer<n>Bottom", ...).
// 3. Content: an Excellon file is a drill layer whatever its name; a Gerber file that holds
//    nothing but closed outlines drawn with thin lines and arcs is the board profile (a "rout"
//    layer), when neither its attributes nor its name said otherwise.
// Anything still undecided is a "document" layer in the "misc" context, for the user to type
// in the matrix.

#include <string>
#include <vector>

#include "GerberX2.h"
#include "Korvo_API_types.h"

namespace wcref {

struct LayerGuess {
    Korvo::API::layer_info info;  // row left 0; drill span left empty (see settleLayers)
    // Copper number: the layer's L<n> (1 = top) from its attributes, else the number in its file
    // name (".g2", "group3", "-In1_Cu"); 0 when unknown. Orders inner layers.
    int order = 0;
    // Drill span by copper number from a Plated/NonPlated function; 0 when not given.
    int span_from = 0;
    int span_to = 0;
    // What decided the type: "attributes", "name", "content" or "nothing".
    std::string decided_by = "nothing";
};

namespace layerguess {

// The matrix row the X2 file attributes give; false (and `guess` untouched) when `function` is
// empty or not one this unit types. An unknown polarity is logged and read as positive.
bool fromFileFunction(const std::string& function, const std::string& polarity, LayerGuess& guess);

// The matrix row a file name gives (any folder part is ignored, case does not matter); false
// when no convention matches, and then `guess` is the "document" row.
bool fromFileName(const std::string& file_name, LayerGuess& guess);

// The copper number in a file name: ".g2", ".gp1", "-in3_cu", "group4", "etchlayer2"; 0 when
// there is none.
int nameOrder(const std::string& file_name);

// True when the features are only thin lines and arcs (no wider than kOutlineMaxWidth) that
// join into closed outlines, one of which encloses all the others: a board outline, with any
// cut-outs.
constexpr double kOutlineMaxWidth = 20 * 25400.0;
bool isOutlineOnly(const std::vector<Korvo::API::featureInfo>& features);

// The whole guess for one file: its attributes (empty when the file carries none), then its
// name, then its content. `features` are the file's features as read; pass an empty list when
// they are not read yet (the outline rule then cannot apply).
LayerGuess guess(const std::string& file_name, bool excellon, const X2Attributes& attributes,
                 const std::vector<Korvo::API::featureInfo>& features);

// The same for a file on disk: its attributes are read with GerberX2 (not for Excellon files).
LayerGuess guessFile(const std::string& path, bool excellon,
                     const std::vector<Korvo::API::featureInfo>& features);

// Sorting rank of a row: top silk, paste, mask, copper from top to bottom (inner ones by
// `order`), bottom mask, paste, silk, then drills, the outline and documents.
int rank(const Korvo::API::layer_info& layer, int order);

// Puts the guessed layers of one board in matrix order and numbers their rows from 1. A board
// whose copper is all inner (files named only by group or layer number) gets its lowest copper
// on top and its highest at the bottom. Drill layers span the copper numbers their attributes
// give when those layers exist, otherwise the outer copper layers.
void settleLayers(std::vector<LayerGuess>& layers);

}  // namespace layerguess

}  // namespace wcref
