#include "GerberPicture.h"

#include <gerbv.h>

#include <QTemporaryDir>
#include <cmath>
#include <memory>

namespace wctest {

namespace {

struct ProjectDeleter {
    void operator()(gerbv_project_t* project) const { gerbv_destroy_project(project); }
};
using Project = std::unique_ptr<gerbv_project_t, ProjectDeleter>;

// A project holding the file as its only layer, drawn white at full opacity on black.
Project open(const QString& path, QString& error) {
    Project project(gerbv_create_project());
    if (!project) {
        error = "libgerbv could not create a project";
        return nullptr;
    }
    project->background.red = project->background.green = project->background.blue = 0;
    const QByteArray name = path.toLocal8Bit();
    gerbv_open_layer_from_filename_with_color(project.get(), name.constData(), 65535, 65535, 65535,
                                              65535);
    if (project->last_loaded < 0 || project->file[0] == nullptr ||
        project->file[0]->image == nullptr) {
        error = "libgerbv could not read " + path;
        return nullptr;
    }
    return project;
}

}  // namespace

bool GerberPicture::bounds(const QString& path, QRectF& inches, QString& error) {
    const Project project = open(path, error);
    if (!project) {
        return false;
    }
    gerbv_render_size_t box;
    gerbv_render_get_boundingbox(project.get(), &box);
    // libgerbv's box runs top to bottom with y growing upwards: "top" is the smaller y.
    const double y0 = std::min(box.top, box.bottom);
    const double y1 = std::max(box.top, box.bottom);
    if (!(box.right > box.left) || !(y1 > y0)) {
        error = "libgerbv found nothing to draw in " + path;
        return false;
    }
    inches = QRectF(box.left, y0, box.right - box.left, y1 - y0);
    return true;
}

QImage GerberPicture::render(const QString& path, const QRectF& window, double pixels_per_inch,
                             qint64 max_pixels, QString& error) {
    const long width = std::lround(window.width() * pixels_per_inch);
    const long height = std::lround(window.height() * pixels_per_inch);
    if (width <= 0 || height <= 0 || static_cast<qint64>(width) * height > max_pixels) {
        error = QString("a picture of %1 x %2 pixels is empty or too large").arg(width).arg(height);
        return {};
    }
    const Project project = open(path, error);
    if (!project) {
        return {};
    }
    QTemporaryDir folder;
    if (!folder.isValid()) {
        error = "no temporary folder for the picture";
        return {};
    }
    gerbv_render_info_t info{};
    info.scaleFactorX = info.scaleFactorY = pixels_per_inch;
    info.lowerLeftX = window.left();
    info.lowerLeftY = window.top();  // the smaller y: the window's bottom edge
    info.renderType = GERBV_RENDER_TYPE_CAIRO_HIGH_QUALITY;
    info.displayWidth = static_cast<gint>(width);
    info.displayHeight = static_cast<gint>(height);
    info.show_cross_on_drill_holes = 0;
    const QString file = folder.filePath("layer.png");
    const QByteArray name = file.toLocal8Bit();
    gerbv_export_png_file_from_project(project.get(), &info, name.constData());
    QImage image(file);
    if (image.isNull() || image.width() != width || image.height() != height) {
        error = "libgerbv's picture of " + path + " could not be read back";
        return {};
    }
    return image;
}

}  // namespace wctest
