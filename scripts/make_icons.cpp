// Draws the button pictures of resources/ (small flat icons). Run once after changing them:
//   g++ -fPIC scripts/make_icons.cpp $(pkg-config --cflags --libs Qt5Gui) -o /tmp/make_icons
//   QT_QPA_PLATFORM=offscreen /tmp/make_icons resources
#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <QPainterPath>

namespace {

QImage canvas(int w, int h, QColor background) {
    QImage image(w, h, QImage::Format_RGB32);
    image.fill(background);
    return image;
}

void save(const QImage& image, const QString& dir, const QString& name) {
    image.save(dir + "/" + name, nullptr, 95);
}

// A run button: a play triangle over a symbol of the scope.
QImage runIcon(int scope, bool pressed) {
    QImage image = canvas(36, 36, pressed ? QColor(255, 236, 200) : QColor(236, 240, 244));
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    p.setPen(QPen(QColor(60, 70, 90), 1.5));
    if (scope == 1) {
        p.drawRect(6, 8, 24, 18);  // the screen
    } else if (scope == 2) {
        p.drawRoundedRect(5, 6, 26, 24, 5, 5);  // the profile
    } else {
        p.drawEllipse(QPointF(18, 18), 13, 13);  // the whole step
    }
    QPainterPath play;
    play.moveTo(14, 11);
    play.lineTo(25, 18);
    play.lineTo(14, 25);
    play.closeSubpath();
    p.fillPath(play, QColor(30, 140, 60));
    return image;
}

QImage viewIcon(QColor color) {
    QImage image = canvas(36, 36, QColor(236, 240, 244));
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    p.setBrush(color);
    p.setPen(QPen(QColor(40, 40, 40), 1.5));
    p.drawEllipse(QPointF(16, 16), 9, 9);
    p.drawLine(QPointF(23, 23), QPointF(31, 31));
    return image;
}

QImage featureIcon(const QString& kind, bool checked) {
    QImage image = canvas(30, 30, checked ? QColor(120, 190, 250) : QColor(226, 230, 236));
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    p.setPen(QPen(QColor(30, 40, 60), 2));
    p.setBrush(QColor(30, 40, 60));
    if (kind == "Pad") {
        p.drawEllipse(QPointF(15, 15), 7, 7);
    } else if (kind == "Line") {
        p.drawLine(6, 24, 24, 6);
    } else if (kind == "Arc") {
        p.setBrush(Qt::NoBrush);
        p.drawArc(6, 6, 18, 18, 0, 180 * 16);
    } else if (kind == "Surf") {
        p.drawPolygon(
            QPolygonF({QPointF(5, 24), QPointF(12, 6), QPointF(25, 10), QPointF(22, 24)}));
    } else if (kind == "Text") {
        p.setFont(QFont("Sans", 14, QFont::Bold));
        p.drawText(image.rect(), Qt::AlignCenter, "T");
    } else if (kind == "negetive") {
        p.drawLine(8, 15, 22, 15);
    } else if (kind == "positive") {
        p.drawLine(8, 15, 22, 15);
        p.drawLine(15, 8, 15, 22);
    }
    return image;
}

}  // namespace

int main(int argc, char** argv) {
    QGuiApplication app(argc, argv);
    const QString dir = argc > 1 ? QString::fromLocal8Bit(argv[1]) : QStringLiteral(".");
    const char* runNames[] = {"Run globally", "Run on features on screen only",
                              "Run on features inside profile"};
    for (int scope = 0; scope < 3; ++scope) {
        save(runIcon(scope, false), dir, QString(runNames[scope]) + "1.jpg");
    }
    save(viewIcon(QColor(220, 40, 40)), dir, "viewred.jpg");
    save(viewIcon(QColor(40, 190, 70)), dir, "viewgreen.jpg");
    save(viewIcon(QColor(200, 210, 220)), dir, "zoom.png");
    QImage histogram = canvas(36, 36, QColor(236, 240, 244));
    {
        QPainter p(&histogram);
        const int heights[] = {10, 22, 16, 28, 8};
        for (int i = 0; i < 5; ++i) {
            p.fillRect(5 + i * 6, 32 - heights[i], 5, heights[i], QColor(60, 110, 200));
        }
    }
    save(histogram, dir, "Results histogram1.jpg");
    for (const QString kind : {"Pad", "Line", "Arc", "Surf", "Text"}) {
        save(featureIcon(kind, false), dir, kind + "1.jpg");
        save(featureIcon(kind, true), dir, kind + "2.jpg");
    }
    for (const QString kind : {"negetive", "positive"}) {
        save(featureIcon(kind, false), dir, kind + "3.jpg");
        save(featureIcon(kind, true), dir, kind + "4.jpg");
    }
    QImage pick = canvas(24, 24, QColor(236, 240, 244));
    {
        QPainter p(&pick);
        p.setPen(QPen(QColor(30, 40, 60), 2));
        p.drawLine(4, 12, 20, 12);
        p.drawLine(12, 4, 12, 20);
    }
    save(pick, dir, "add_fea.jpg");
    {
        QPainter p(&pick);
        p.setPen(QPen(QColor(30, 140, 60), 2));
        p.drawLine(16, 4, 22, 4);
        p.drawLine(19, 1, 19, 7);
    }
    save(pick, dir, "add_fea_pls.jpg");
    return 0;
}
