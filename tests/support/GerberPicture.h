#pragma once
// Draws one Gerber or Excellon file through libgerbv's own PNG export: copper white on black,
// antialiased edges, over a window given in inches (libgerbv's unit) at a given resolution.

#include <QImage>
#include <QRectF>
#include <QString>

namespace wctest {

class GerberPicture {
public:
    // The file's extent in inches (x right, y up); false with the reason when libgerbv cannot
    // read it.
    static bool bounds(const QString& path, QRectF& inches, QString& error);

    // The window (inches, y up; its left and bottom edges are the picture's) at
    // `pixels_per_inch`; a null image with the reason when the file cannot be read or the
    // picture would be empty or larger than `max_pixels`.
    static QImage render(const QString& path, const QRectF& window, double pixels_per_inch,
                         qint64 max_pixels, QString& error);
};

}  // namespace wctest
