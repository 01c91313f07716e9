#include "FabricationExport.h"

#include <QApplication>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QMessageBox>
#include <QTemporaryDir>

#include "DemoWindow.h"
#include "FabricationArchive.h"
#include "GraphicView.h"
#include "Korvo_API.h"
#include "LayerExport.h"

namespace demo {

namespace {

// Writes every layer into `folder`; empty on success, else which layer failed and why.
QString writeLayers(const std::string& job, const std::string& step, const QString& folder,
                    QStringList& files) {
    std::vector<std::string> steps;
    std::vector<Korvo::API::layer_info> matrix;
    Korvo::API::get_matrix(job, steps, matrix);
    if (matrix.empty()) {
        return FabricationExport::tr("Job \"%1\" has no layers to export.")
            .arg(QString::fromStdString(job));
    }
    const std::map<std::string, std::string> names = wcref::LayerExport::fileNames(matrix);
    for (const Korvo::API::layer_info& row : matrix) {
        wcref::ExportLayer layer;
        std::string why;
        const QString file = QString::fromStdString(names.at(row.name));
        const std::string path = QDir(folder).filePath(file).toStdString();
        const bool ok = wcref::LayerExport::snapshot(job, step, row.name, layer, why) &&
                        (wcref::LayerExport::formatOf(row) == Korvo::API::export_drill
                             ? wcref::LayerExport::writeExcellon(layer, path, nullptr, why)
                             : wcref::LayerExport::writeGerber(layer, path, nullptr, why)) ==
                            wcref::LayerExport::Outcome::written;
        if (!ok) {
            return FabricationExport::tr("Layer %1 was not exported: %2")
                .arg(QString::fromStdString(row.name), QString::fromStdString(why));
        }
        files << file;
    }
    return {};
}

// Moves the files from `scratch` into the folder `target`, replacing files of the same name.
QString moveInto(const QString& scratch, const QString& target, const QStringList& files) {
    if (!QDir().mkpath(target)) {
        return FabricationExport::tr("The folder %1 cannot be made.").arg(target);
    }
    for (const QString& file : files) {
        const QString to = QDir(target).filePath(file);
        if ((QFileInfo::exists(to) && !QFile::remove(to)) ||
            !QFile::rename(QDir(scratch).filePath(file), to)) {
            return FabricationExport::tr("%1 cannot be written.").arg(to);
        }
    }
    return {};
}

}  // namespace

void FabricationExport::start(DemoWindow* window) {
    const QString job = QString::fromStdString(window->view()->job());
    const QString step = QString::fromStdString(window->view()->step());
    const QString target = QFileDialog::getSaveFileName(
        window, tr("Export fabrication files (a folder, or a name ending in .zip)"),
        QDir::home().filePath(job), QString(), nullptr, QFileDialog::DontConfirmOverwrite);
    if (target.isEmpty()) {
        return;
    }
    QApplication::setOverrideCursor(Qt::WaitCursor);
    QStringList files;
    const QString failure = exportStep(job, step, target, &files);
    QApplication::restoreOverrideCursor();
    if (!failure.isEmpty()) {
        window->log(failure);
        QMessageBox::warning(window, tr("Export fabrication files"), failure);
        return;
    }
    window->log(tr("Exported %1 layers of %2/%3 to %4: %5")
                    .arg(files.size())
                    .arg(job, step, target, files.join(QStringLiteral(", "))));
}

void FabricationExport::openArchive(DemoWindow* window) {
    const QString archive =
        QFileDialog::getOpenFileName(window, tr("Archive of Gerber and drill files"),
                                     QDir::homePath(), tr("Archives (*.zip *.tar.gz *.tgz)"));
    if (!archive.isEmpty()) {
        window->openFabricationFiles(archive);
    }
}

QString FabricationExport::exportStep(const QString& job, const QString& step,
                                      const QString& target, QStringList* files) {
    const bool zip = target.endsWith(QLatin1String(".zip"), Qt::CaseInsensitive);
    const QFileInfo info(target);
    // Next to the target, so that the files move into it by a rename.
    QTemporaryDir scratch(info.absolutePath() + QStringLiteral("/.export-XXXXXX"));
    if (!scratch.isValid()) {
        return tr("No files can be written next to %1.").arg(target);
    }
    QStringList written;
    QString failure = writeLayers(job.toStdString(), step.toStdString(), scratch.path(), written);
    if (failure.isEmpty() && zip) {
        std::string why;
        if (!wcref::FabricationArchive::writeZip(scratch.path().toStdString(), target.toStdString(),
                                                 why)) {
            failure = QString::fromStdString(why);
        }
    } else if (failure.isEmpty()) {
        failure = moveInto(scratch.path(), target, written);
    }
    if (files != nullptr && failure.isEmpty()) {
        *files = written;
    }
    return failure;
}

}  // namespace demo
