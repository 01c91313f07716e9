#pragma once
// Writes one layer of the engine as a fabrication file: Gerber RS-274X for artwork, Excellon for
// drill layers. Both go through libgerbv's exporters, from a libgerbv image built here out of the
// layer's features; what those exporters cannot say, or say wrongly, is written or corrected
// here (LayerExport.cpp says what and why).
//
// What becomes what (the reverse of GerberImport, so that a board read, written and read again
// keeps every feature within the file's resolution, a millionth of an inch):
// - a pad with a standard symbol ("r", "s", "rect", "oval") flashes a standard aperture; turned
//   by a quarter it flashes the aperture of the turned size, by any other angle a macro of its
//   outline; a "poly" pad flashes a polygon aperture; any other pad with an outline (macro pads)
//   flashes a macro of outline primitives whose union is the outline, holes drawn clear;
// - a line or an arc is a draw with the aperture of its symbol;
// - a surface is a region, its holes further contours of the same region turning the other way;
// - a negative feature is drawn in clear polarity;
// - a text is a comment: Gerber has no text, and the engine keeps no font to draw it with.
// Drill layers: round pads are hits, round lines slots, each tool once per size and plating.
//
// X2 file attributes say what the file is, so that reading it back types it as the same layer
// (LayerGuess): .GenerationSoftware, .FileFunction from the layer's type, side and its place
// among the copper layers, .FilePolarity, .SameCoordinates (the job and step); an Excellon file
// carries them as "; #@! " comments, with the plating of the file or, for a layer of both
// kinds, of each tool.
//
// Not written: the features' nets (X2 object attributes, which the import reads) and any
// attribute but plating. The engine's import takes a drill file's plating for all its holes, so
// the non-plated holes of a layer of both kinds come back plated.
//
// A file is written whole or not at all: to a temporary file first, renamed when complete. A
// stop requested through the progress block writes nothing.

#include <map>
#include <string>
#include <vector>

#include "Korvo_API.h"

namespace wcref {

// What the export of one layer reads, copied from the engine's store.
struct ExportLayer {
    std::string job;
    std::string step;
    Korvo::API::layer_info row;
    std::vector<Korvo::API::layer_info> matrix;  // the job's, for the copper numbers
    std::vector<Korvo::API::featureInfo> features;
};

class LayerExport {
public:
    enum class Outcome { written, stopped, failed };

    // The layer as stored; false with the reason when the job, step or layer is unknown.
    static bool snapshot(const std::string& job, const std::string& step, const std::string& layer,
                         ExportLayer& out, std::string& message);

    static Outcome writeGerber(const ExportLayer& layer, const std::string& path,
                               Korvo::COMMON::progress_state* progress, std::string& message);
    static Outcome writeExcellon(const ExportLayer& layer, const std::string& path,
                                 Korvo::COMMON::progress_state* progress, std::string& message);

    // The X2 file function of `row` as LayerGuess reads it back ("Copper,L2,Inr,Plane",
    // "Soldermask,Top", "Profile,NP", "Plated,1,4,PTH", "Other,Document"); `plating` is
    // "plated", "non_plated" or "mixed" and matters for drill layers only.
    static std::string fileFunction(const Korvo::API::layer_info& row,
                                    const std::vector<Korvo::API::layer_info>& matrix,
                                    const std::string& plating = "plated");

    // Excellon for drill layers, Gerber for everything else.
    static Korvo::API::export_type formatOf(const Korvo::API::layer_info& row);
    // A file name per layer of `matrix`, unique, from the layer name: kept when its extension
    // already names the layer's format (".gtl", ".gbr", ".drl", ...), else with ".gbr" or
    // ".drl" added.
    static std::map<std::string, std::string> fileNames(
        const std::vector<Korvo::API::layer_info>& matrix);
};

}  // namespace wcref
