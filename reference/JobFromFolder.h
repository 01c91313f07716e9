#pragma once
// Builds a whole job from a folder of Gerber and Excellon files: one layer per file that
// libgerbv reads, in step "pcb".
//
// Layers are named after their files (lower case) and typed, sided and ordered from the
// common file-name conventions: .GTL/.GBL/.Gn/.GPn, "*-F_Cu", "*-B_Cu", "*-In<n>_Cu",
// "*.front.gbr", "*.back.gbr", "*.group<n>.gbr" copper; .GTS/.GBS, "*-F_Mask", "*.frontmask.*"
// solder mask; .GTO/.GBO, "*-F_SilkS", "*.frontsilk.*" silk screen; .GTP/.GBP paste;
// .GKO/.GM1, "*-Edge_Cuts", "outline" the board outline (a "rout" layer); every Excellon
// file is a drill layer spanning the outer copper layers; anything else is a "document" layer
// in the "misc" context. Order: top silk, paste, mask, copper from top to bottom, bottom mask,
// paste, silk, drills, outline, documents.
//
// The profile is the convex hull of the outline layer when there is one, else the box of all
// board layers. Pads of the outer copper layers with no drill at their centre get the ".smd"
// attribute, drill pads the ".drill" attribute "plated". Files libgerbv cannot identify
// (read-me texts, pictures) are skipped; a folder without any layer is refused.

#include <string>

#include "EngineJob.h"

namespace wcref {

class JobFromFolder {
public:
    // Matrix row guessed from a file name (row left 0); `drill` when the file is Excellon.
    static Korvo::API::layer_info guessLayer(const std::string& file_name, bool drill);

    // Reads the folder into `job`; false with the reason in `message`.
    static bool build(const std::string& job_name, const std::string& folder, EngineJob& job,
                      std::string& message);

    // Builds the job and opens it in the reference engine; a job of that name that is open
    // already is kept as it is. False when the folder gives no layer.
    static bool open(const std::string& job_name, const std::string& folder);
};

}  // namespace wcref
