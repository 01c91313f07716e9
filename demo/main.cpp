// The demo host. With a display it opens the main window; without one (or with --tour DIR) it
// writes a PNG of every dialog it knows and says where they went.

#include <glog/logging.h>

#include <QApplication>
#include <QCommandLineParser>
#include <QDir>
#include <cstdio>
#include <cstdlib>

#include "DemoWindow.h"

int main(int argc, char** argv) {
    google::InitGoogleLogging(argv[0]);
    const bool noDisplay = qEnvironmentVariableIsEmpty("DISPLAY") &&
                           qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY") &&
                           qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM");
    if (noDisplay) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("widget_common_demo"));

    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Demo host of the Widget_Common dialogs"));
    parser.addHelpOption();
    QCommandLineOption tourOption(QStringLiteral("tour"),
                                  QStringLiteral("Write a PNG of every dialog to <dir> and exit."),
                                  QStringLiteral("dir"));
    parser.addOption(tourOption);
    QCommandLineOption openOption(
        QStringLiteral("open"), QStringLiteral("Open a folder of Gerber and drill files as a job."),
        QStringLiteral("folder"));
    parser.addOption(openOption);
    parser.process(app);

    DemoWindow window;
    window.openSampleJob();
    if (parser.isSet(openOption) && !window.openFabricationFiles(parser.value(openOption))) {
        return 1;
    }

    QString tourFolder = parser.value(tourOption);
    if (tourFolder.isEmpty() && noDisplay) {
        tourFolder = QStringLiteral("demo-tour");
        std::printf("No display found: running the tour instead of the window.\n");
    }
    if (!tourFolder.isEmpty()) {
        const QStringList written = window.tour(tourFolder);
        std::printf("Wrote %d pictures to %s:\n", int(written.size()),
                    qPrintable(QDir(tourFolder).absolutePath()));
        for (const QString& path : written) {
            std::printf("  %s\n", qPrintable(path));
        }
        return written.isEmpty() ? EXIT_FAILURE : EXIT_SUCCESS;
    }
    window.show();
    return app.exec();
}
