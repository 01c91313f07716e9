// A minimal host of the Widget_Common dialogs: opens Contourize on a window of its own, takes
// the record the dialog sends on Apply, and prints it. With --apply it presses Apply itself and
// exits, which is how the build checks an installed package.

#include <QApplication>
#include <QMainWindow>
#include <QPushButton>
#include <cstdio>

#include "edit/Widget_Contourize.h"
#include "edit/contourize_params.h"

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    const bool applyAndQuit = app.arguments().contains(QStringLiteral("--apply"));

    QMainWindow host;  // the handle through which the unit service knows the display unit
    auto* dialog = new Widget_Contourize(&host);

    int received = 0;
    QObject::connect(
        dialog, &Widget_Contourize::send_Contourize_Info, &host,
        [&received](QObject* record) {
            // The record lives on the dialog's stack during the emission: copy it now.
            const auto params = *reinterpret_cast<const contourize_params*>(record);
            ++received;
            std::printf("contourize: accuracy %.0f nm, max size %.0f nm, islands %s, mode %d\n",
                        params.accuracy, params.max_size, params.separate_to_islands ? "yes" : "no",
                        params.mode);
            std::fflush(stdout);
        },
        Qt::DirectConnection);

    if (applyAndQuit) {
        dialog->on_Apply_clicked();
        return received == 1 ? 0 : 1;
    }
    host.show();
    dialog->show();
    return app.exec();
}
