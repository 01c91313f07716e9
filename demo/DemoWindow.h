#pragma once

#include <QMainWindow>
#include <QPointer>
#include <QTranslator>
#include <functional>
#include <map>

#include "DialogCatalogue.h"
#include "PluginMetaData.h"

class GraphicView;
class QComboBox;
class QListWidget;
class QPlainTextEdit;
namespace demo {
class FeatureMoveHost;
}

// The demo host: opens the sample job, shows its steps and layers in a graphic view, opens the
// library's dialogs from its menus, switches the display unit and re-applies texts, acts on the
// plug-in messages the dialogs send to the view, the job list and the matrix, and logs every
// record and message it receives.
class DemoWindow : public QMainWindow {
    Q_OBJECT
public:
    explicit DemoWindow(QWidget* parent = nullptr);
    ~DemoWindow() override;

    bool openSampleJob();
    // Builds a job from a folder of Gerber and drill files and shows it, with the format each
    // drill file was read in.
    bool openFabricationFiles(const QString& folder);
    // The drill formats of the shown job, to check and override (null for a job not opened from
    // fabrication files).
    QWidget* openDrillFormats();
    // The layer matrix of the shown job, to type, rename and reorder its layers.
    QWidget* openLayerMatrix();
    // "Move a feature...": the next click picks a pad or line to move.
    demo::FeatureMoveHost* featureMove() const { return feature_move_; }
    QWidget* openDialog(const demo::DialogEntry& entry);
    void tourRealBoard(const std::function<void(QWidget*, const QString&)>& snap);
    void setDisplayUnit(int unit);
    // Installs the Chinese catalogue (or removes it) and re-applies every open dialog's texts;
    // false when the catalogue is missing.
    bool setLanguage(bool chinese);
    void changeLanguage();
    void log(const QString& line);

    // What the host does when a plug-in message with `code` arrives (after logging it).
    using MessageHandler = std::function<void(const PluginMetaData&)>;
    void onMessage(int code, MessageHandler handler);
    GraphicView* view() const { return view_; }
    // Shows the current job and step with the checked layers (after an edit or a refresh).
    void redraw();
    // Makes `step` of the current job the shown one.
    void showStep(const QString& step);

    // Writes a PNG of the window and of every catalogued dialog, in mil and in mm, to `folder`.
    QStringList tour(const QString& folder);

signals:
    // After the view was redrawn for a job and step.
    void stepShown(const QString& job, const QString& step);

private:
    void buildMenus();
    void refreshJobs();
    void refreshLayers();
    void dispatch(const PluginMetaData& message);
    void showHits(const PluginMetaData& message);

    demo::DemoContext context_;
    GraphicView* view_ = nullptr;
    QComboBox* jobs_ = nullptr;
    QComboBox* steps_ = nullptr;
    QListWidget* layers_ = nullptr;
    QPlainTextEdit* log_ = nullptr;
    std::map<QString, QPointer<QWidget>> dialogs_;
    std::map<QString, QString> folders_;  // job -> the folder it was opened from
    std::multimap<int, MessageHandler> handlers_;
    QTranslator translator_;
    int subscription_ = -1;
    demo::FeatureMoveHost* feature_move_ = nullptr;
};
