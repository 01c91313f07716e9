#pragma once

#include <QMainWindow>
#include <QPointer>
#include <map>

#include "DialogCatalogue.h"

class JobView;
class QComboBox;
class QListWidget;
class QPlainTextEdit;

// The demo host: opens the sample job, opens the library's dialogs from its menus, switches the
// display unit and re-applies texts, and logs every record and plug-in message it receives.
class DemoWindow : public QMainWindow {
    Q_OBJECT
public:
    explicit DemoWindow(QWidget* parent = nullptr);
    ~DemoWindow() override;

    bool openSampleJob();
    QWidget* openDialog(const demo::DialogEntry& entry);
    void setDisplayUnit(int unit);
    void changeLanguage();
    void log(const QString& line);
    // Writes a PNG of the window and of every catalogued dialog, in mil and in mm, to `folder`.
    QStringList tour(const QString& folder);

private:
    void buildMenus();
    void refreshLayers();

    demo::DemoContext context_;
    JobView* view_ = nullptr;
    QComboBox* steps_ = nullptr;
    QListWidget* layers_ = nullptr;
    QPlainTextEdit* log_ = nullptr;
    std::map<QString, QPointer<QWidget>> dialogs_;
    int subscription_ = -1;
};
