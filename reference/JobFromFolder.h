#pragma once
// Builds a whole job from a folder of Gerber and Excellon files, or from a .zip, .tar.gz or .tgz
// of them (unpacked by FabricationArchive): one layer per file that libgerbv reads, in step
// "pcb".
//
// Layers are named after their files (lower case) and typed, sided and ordered by LayerGuess:
// from the files' Gerber X2 attributes, then the common file-name conventions, then their
// content (an Excellon file is a drill layer, a file of closed thin outlines the profile);
// anything undecided is a "document" layer in the "misc" context, for the user to type in the
// matrix (change_matrix). Drill layers span the copper their attributes name, else the outer
// copper layers. An IPC-D-356 netlist in the folder becomes the job's netlist; one that does
// not parse is refused (logged) and the job opens without it.
//
// The profile is the convex hull of the outline layer when there is one, else the box of all
// board layers. Pads of the outer copper layers with no drill at their centre get the ".smd"
// attribute. Gerber files are read first; each drill file is then read in the coordinate
// format that registers its holes onto the pads of the outer copper layers (DrillFormat), and
// its pads get the ".drill" attribute "plated" or "non_plated". Files libgerbv cannot identify
// (read-me texts, pictures) are skipped; a folder without any layer is refused.

#include <string>

#include "EngineJob.h"

namespace wcref {

// Step attributes `build` leaves for each drill layer <name>: the coordinate format it was read
// in ("INCH,LZ 2:3, plated") and how that was chosen ("header (98% of 427 holes on pads)").
inline const std::string kDrillFormatKey = "drill_format.";
inline const std::string kDrillFormatSourceKey = "drill_format_source.";

class JobFromFolder {
public:
    // Matrix row guessed from a file name (row left 0); `drill` when the file is Excellon.
    static Korvo::API::layer_info guessLayer(const std::string& file_name, bool drill);

    // Reads the folder, or an archive of fabrication files (FabricationArchive), into `job`;
    // false with the reason in `message`.
    static bool build(const std::string& job_name, const std::string& folder, EngineJob& job,
                      std::string& message);

    // Builds the job and opens it in the reference engine; a job of that name that is open
    // already is kept as it is. False when the folder gives no layer.
    static bool open(const std::string& job_name, const std::string& folder);

private:
    static bool buildFromArchive(const std::string& job_name, const std::string& archive,
                                 EngineJob& job, std::string& message);
};

}  // namespace wcref
