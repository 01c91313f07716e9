#pragma once
// The demo's panel drawing: the panel profile and every step-and-repeat instance as the engine
// places it (its own geometry, no copy of it here), selected instances filled. Clicks are picks
// answered to the step-and-repeat popup's slots.

#include <QPointer>
#include <QVector>
#include <QWidget>
#include <string>
#include <vector>

#include "Korvo_API_types.h"

class Widget_SR_Edit;

class PanelView : public QWidget {
    Q_OBJECT
public:
    explicit PanelView(QWidget* parent = nullptr);
    ~PanelView() override;

    void showStep(const std::string& job, const std::string& step);
    void setPopup(Widget_SR_Edit* popup);
    void refresh();

signals:
    // After every re-read of the table (the host's table view follows it).
    void refreshed();

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;

private:
    QPointF toScreen(const Korvo::API::point& p) const;
    QPointF toBoard(const QPointF& screen) const;
    bool popupButtonChecked(const char* name) const;

    struct Placed {
        std::vector<Korvo::API::point> outline;
        Korvo::API::reply_box box;
        bool selected = false;
    };

    std::string job_;
    std::string step_;
    std::vector<Korvo::API::point> profile_;
    std::vector<Placed> instances_;
    Korvo::API::reply_box box_;
    QPointer<Widget_SR_Edit> popup_;
    bool awaiting_reference_ = false;
    QPointF press_;
    QVector<QPointF> polygon_;
    int subscription_ = -1;
};
