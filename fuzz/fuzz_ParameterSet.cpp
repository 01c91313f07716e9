// The optimisation dialogs' parameter-set reader. The first byte picks one of the four dialogs;
// the rest is stored as a saved set of that dialog and picked from its "ERF:" list, through the
// same store, reader and widget list as a user's pick. Either the set is refused (a box says so)
// and the form, ranges included, is as it was, or the set is put into the form, and the form
// saved and picked again saves the same set once more.

#include <glog/logging.h>
#include <QApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMessageBox>
#include <QTimer>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <vector>

#include "ReferenceEngine.h"
#include "dfm/Widget_NFPRemoval.h"
#include "dfm/Widget_SignalLayerOpt.h"
#include "dfm/Widget_SolderMaskOpt.h"
#include "dfm/Widget_Teardrops.h"
#include "frame/ParameterSetActions.h"
#include "frame/ParameterSetStore.h"

namespace {

struct Scene {
    Scene() {
        qputenv("QT_QPA_PLATFORM", "offscreen");
        FLAGS_minloglevel = 3;  // every refusal is logged: keep the log quiet
        qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
        app = std::make_unique<QApplication>(argc, argv);
        // A folder of its own beside the program, emptied at each start: the sets and the range
        // store's file live there.
        QDir folder(QCoreApplication::applicationDirPath() +
                    QStringLiteral("/fuzz_ParameterSet.work"));
        if (!folder.removeRecursively() || !QDir().mkpath(folder.path()) ||
            !QDir::setCurrent(folder.path())) {
            __builtin_trap();
        }
        wcref::resetEngine();
        if (!wcref::openSampleJob("fuzz")) {
            __builtin_trap();
        }
        host = std::make_unique<QWidget>();
        dialogs = {new Widget_SignalLayerOpt("fuzz", "pcb", host.get()),
                   new Widget_SolderMaskOpt("fuzz", "pcb", host.get()),
                   new Widget_Teardrops("fuzz", "pcb", host.get()),
                   new Widget_NFPRemoval("fuzz", "pcb", host.get())};
        // A refused set is reported in a modal box; this closes it from inside its event loop.
        closer = std::make_unique<QTimer>();
        QObject::connect(closer.get(), &QTimer::timeout, [] {
            if (auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget())) {
                box->done(QMessageBox::Ok);
                ++boxes;
            }
        });
        closer->start(0);
    }

    int argc = 1;
    char name[5] = "fuzz";
    char* argv[2] = {name, nullptr};
    std::unique_ptr<QApplication> app;
    std::unique_ptr<QWidget> host;
    std::vector<QWidget*> dialogs;
    std::unique_ptr<QTimer> closer;
    static int boxes;
};
int Scene::boxes = 0;

// The form of the dialog as a set would store it: saved under `name`, read back, removed.
QJsonObject formOf(wc::ParameterSetActions& sets, const QString& name) {
    wc::ParameterSetStore store(sets.key());
    QJsonObject form;
    if (!sets.save(name) || store.load(name, form) != wc::ParameterSetStore::LoadResult::Loaded) {
        __builtin_trap();  // the dialog's own form always saves and reads back
    }
    return form;
}

}  // namespace

// The target works in a folder of its own: corpus folders named relative to where it started
// are made absolute first.
extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv) {
    for (int i = 1; i < *argc; ++i) {
        if ((*argv)[i][0] != '-') {
            (*argv)[i] = strdup(QFileInfo(QString::fromLocal8Bit((*argv)[i]))
                                    .absoluteFilePath()
                                    .toLocal8Bit()
                                    .constData());
        }
    }
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static Scene& scene = *new Scene;  // kept to the end: Qt's own statics go first at exit
    if (size == 0) {
        return 0;
    }
    QWidget* dialog = scene.dialogs[data[0] % scene.dialogs.size()];
    auto* sets = dialog->findChild<wc::ParameterSetActions*>();
    wc::ParameterSetStore store(sets->key());
    for (const QString& name : store.names()) {
        store.remove(name);
    }

    const QJsonObject before = formOf(*sets, "before");
    QFile file(store.filePath("picked"));
    if (!file.open(QIODevice::WriteOnly) ||
        file.write(reinterpret_cast<const char*>(data + 1), qint64(size - 1)) != qint64(size - 1)) {
        __builtin_trap();
    }
    file.close();

    const int boxes = Scene::boxes;
    if (!sets->load("picked")) {
        // Refused: said in a box, and nothing of the form or its ranges changed.
        if (Scene::boxes != boxes + 1 || formOf(*sets, "after") != before) {
            __builtin_trap();
        }
        return 0;
    }
    const QJsonObject once = formOf(*sets, "once");
    if (!sets->load("once") || formOf(*sets, "twice") != once) {
        __builtin_trap();
    }
    return 0;
}
