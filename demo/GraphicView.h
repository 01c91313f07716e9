#pragma once
// The demo's graphic view: the displayed layers of a step with their features, the profile, the
// step-and-repeat instances of a panel, the marks the dialogs ask for (measurements of hits,
// selected, highlighted and hidden features), and picks in engine coordinates.
//
// Scene coordinates are engine units (nanometres) with y pointing up; the view flips them.

#include <QGraphicsView>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "Korvo_API_types.h"
#include "analysis_drawing_data.h"

class LayerItem;
class QGraphicsItemGroup;
class QGraphicsRectItem;

class GraphicView : public QGraphicsView {
    Q_OBJECT
public:
    // How a feature is marked; a hidden feature is not drawn.
    enum class Mark { None, Selected, Highlighted, Hidden };

    // A measurement or shape the view draws over the features.
    struct Overlay {
        enum Kind { Line, Box, Polygon } kind = Line;
        std::vector<Korvo::API::point> points;
        QString text;
    };

    explicit GraphicView(QWidget* parent = nullptr);

    // Shows `step` of `job` with `layers` displayed, re-reading everything from the engine.
    void showStep(const std::string& job, const std::string& step,
                  const std::vector<std::string>& layers);
    // Re-reads the displayed layers, the profile and the instances (after an edit).
    void reload();
    const std::string& job() const { return job_; }
    const std::string& step() const { return step_; }
    const std::vector<std::string>& displayedLayers() const { return layers_; }

    void setFeatureMarks(const std::string& layer, const std::set<int>& ids, Mark mark);
    void clearFeatureMarks(Mark mark);
    int markedCount(Mark mark) const;

    // The shapes of a results viewer's drawing data, each labelled with its value text.
    static std::vector<Overlay> overlaysOf(const Korvo::API::analysis_drawing_data& data);
    void setOverlays(const std::vector<Overlay>& overlays);
    void clearOverlays();
    int overlayCount() const { return int(overlayItems_.size()); }

    // Instance boxes of the panel, in table order; `selected` marks the picked ones.
    void setInstanceSelection(const std::set<std::pair<int, int>>& selected);
    int instanceCount() const { return int(instanceBoxes_.size()); }
    // Where each instance puts the step it places (nested ones included), as drawn.
    const std::vector<QTransform>& instancePlacements() const { return placements_; }

    void zoomToBox(const Korvo::API::reply_box& box);
    void panTo(const Korvo::API::point& centre);
    void zoomToAll();

signals:
    // A click (or a drag for a rectangle) in engine coordinates; `shift` adds to what was picked.
    void pointPicked(const Korvo::API::point& at, bool shift);
    void rectanglePicked(const Korvo::API::point& first, const Korvo::API::point& second,
                         bool shift);
    void pointDoubleClicked(const Korvo::API::point& at);

protected:
    void wheelEvent(QWheelEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void drawProfileAndInstances();
    void addInstanceLayers(const std::string& step, const std::string& layer, const QColor& colour,
                           const QTransform& outer, int z, int depth);
    Korvo::API::point toEngine(const QPoint& viewPos) const;

    std::string job_;
    std::string step_;
    std::vector<std::string> layers_;
    std::map<std::string, LayerItem*> layerItems_;
    std::vector<QGraphicsItem*> instanceLayerItems_;
    std::vector<QTransform> placements_;
    std::vector<QGraphicsItem*> overlayItems_;
    struct InstanceBox {
        int row = 0;
        int index = 0;
        QGraphicsRectItem* item = nullptr;
    };
    std::vector<InstanceBox> instanceBoxes_;
    std::vector<QGraphicsItem*> frameItems_;
    QPoint pressAt_;
    QGraphicsRectItem* rubberBand_ = nullptr;
    bool userZoomed_ = false;
};
