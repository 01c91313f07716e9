#pragma once
// "Job → Export fabrication files...": every layer of the shown step as a fabrication file,
// Gerber RS-274X for artwork and Excellon for drill layers (the reference engine's layer export),
// each named after its layer, into a folder or, when the chosen name ends in ".zip", into a zip
// archive. The files are written to a scratch folder first and moved or packed only once every
// layer is written: a failure names the layer and the reason and leaves nothing behind. The way
// in from an archive is here too.

#include <QCoreApplication>
#include <QString>
#include <QStringList>

class DemoWindow;

namespace demo {

class FabricationExport {
    Q_DECLARE_TR_FUNCTIONS(FabricationExport)
public:
    // Asks where to, exports the step the window shows and logs the outcome.
    static void start(DemoWindow* window);
    // "Job → Open fabrication archive...": asks for a .zip, .tar.gz or .tgz and opens it as the
    // window opens a folder of fabrication files.
    static void openArchive(DemoWindow* window);

    // Exports every layer of `step` of `job` to `target` (a folder, or a .zip); the files
    // written (names within the target) in `files`. Empty on success, else why not.
    static QString exportStep(const QString& job, const QString& step, const QString& target,
                              QStringList* files = nullptr);
};

}  // namespace demo
