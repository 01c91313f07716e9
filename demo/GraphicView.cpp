#include "GraphicView.h"

#include <QGraphicsItem>
#include <QGraphicsRectItem>
#include <QGraphicsScene>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPathStroker>
#include <QRegularExpression>
#include <QStyleOptionGraphicsItem>
#include <QWheelEvent>
#include <algorithm>
#include <cmath>
#include <memory>

#include "Korvo_API.h"
#include "StepRepeatGeometry.h"

namespace {

constexpr double kNmPerMil = 25400.0;
const QColor kBackground(18, 22, 28);

QColor layerColour(int index) {
    static const QColor palette[] = {
        QColor(0, 190, 90),   QColor(220, 80, 60),  QColor(70, 140, 230), QColor(230, 190, 40),
        QColor(170, 90, 220), QColor(40, 200, 200), QColor(230, 130, 40), QColor(160, 160, 160)};
    return palette[index % (sizeof(palette) / sizeof(palette[0]))];
}

QPointF toScene(const Korvo::API::point& p) {
    return QPointF(p.x, p.y);
}

// Outline of a standard pad symbol centred on the origin ("r60", "s40", "rect60x80",
// "oval40x80"; numbers in mil). Unknown names get a small cross so they stay visible.
QPainterPath symbolPath(const std::string& symbol) {
    static const QRegularExpression pattern(
        QStringLiteral("^(r|s|rect|oval)([0-9]+(?:\\.[0-9]+)?)(?:x([0-9]+(?:\\.[0-9]+)?))?"));
    const QRegularExpressionMatch match = pattern.match(QString::fromStdString(symbol));
    QPainterPath path;
    if (!match.hasMatch()) {
        const double r = 5 * kNmPerMil;
        path.addRect(-r, -r / 5, 2 * r, 2 * r / 5);
        path.addRect(-r / 5, -r, 2 * r / 5, 2 * r);
        return path;
    }
    const QString kind = match.captured(1);
    const double w = match.captured(2).toDouble() * kNmPerMil;
    const double h = match.captured(3).isEmpty() ? w : match.captured(3).toDouble() * kNmPerMil;
    if (kind == QLatin1String("r")) {
        path.addEllipse(QPointF(0, 0), w / 2, w / 2);
    } else if (kind == QLatin1String("oval")) {
        const double radius = std::min(w, h) / 2;
        path.addRoundedRect(-w / 2, -h / 2, w, h, radius, radius);
    } else {
        path.addRect(-w / 2, -h / 2, w, h);
    }
    return path;
}

// Line width of a drawing symbol: the diameter of "r<d>" or the side of "s<w>".
double symbolWidth(const std::string& symbol) {
    return symbolPath(symbol).boundingRect().width();
}

QPainterPath arcCentreline(const Korvo::API::featureInfo& f) {
    const QPointF c = toScene(f.center);
    const QPointF s = toScene(f.start);
    const QPointF e = toScene(f.end);
    const double radius = std::hypot(s.x() - c.x(), s.y() - c.y());
    double from = std::atan2(s.y() - c.y(), s.x() - c.x());
    double to = std::atan2(e.y() - c.y(), e.x() - c.x());
    double sweep = to - from;
    // A full circle when start and end coincide.
    if (f.clockwise) {
        while (sweep >= 0)
            sweep -= 2 * M_PI;
    } else {
        while (sweep <= 0)
            sweep += 2 * M_PI;
    }
    QPainterPath path(s);
    const int steps = std::max(8, int(std::abs(sweep) / (M_PI / 64)));
    for (int i = 1; i <= steps; ++i) {
        const double a = from + sweep * i / steps;
        path.lineTo(c.x() + radius * std::cos(a), c.y() + radius * std::sin(a));
    }
    return path;
}

QPainterPath featurePath(const Korvo::API::featureInfo& f) {
    using namespace Korvo::API;
    switch (f.type) {
        case feature_pad: {
            if (!f.contour.empty()) {
                QPolygonF outline;
                for (const point& p : f.contour)
                    outline << toScene(p);
                QPainterPath path;
                path.addPolygon(outline);
                path.closeSubpath();
                return path;
            }
            QTransform placement;
            placement.translate(f.start.x, f.start.y);
            // The engine turns pads clockwise; the scene's y points up.
            placement.rotate(-f.angle);
            if (f.mirror)
                placement.scale(-1, 1);
            return placement.map(symbolPath(f.symbol));
        }
        case feature_line:
        case feature_arc: {
            QPainterPath centre;
            if (f.type == feature_line) {
                centre.moveTo(toScene(f.start));
                centre.lineTo(toScene(f.end));
            } else {
                centre = arcCentreline(f);
            }
            QPainterPathStroker stroker;
            stroker.setWidth(std::max(1.0, symbolWidth(f.symbol)));
            stroker.setCapStyle(f.symbol.rfind('s', 0) == 0 ? Qt::SquareCap : Qt::RoundCap);
            stroker.setJoinStyle(Qt::RoundJoin);
            return stroker.createStroke(centre);
        }
        case feature_surface: {
            QPolygonF outline;
            for (const point& p : f.contour)
                outline << toScene(p);
            QPainterPath path;
            path.setFillRule(Qt::OddEvenFill);
            path.addPolygon(outline);
            path.closeSubpath();
            return path;
        }
        case feature_text: {
            QPainterPath path;
            const double h = 30 * kNmPerMil;
            path.addRect(f.start.x, f.start.y, h * std::max<size_t>(1, f.text.size()) * 0.6, h);
            return path;
        }
    }
    return QPainterPath();
}

// The features of one displayed layer, each with its outline computed once.
struct FeatureShape {
    int id = -1;
    bool positive = true;
    QPainterPath path;
};

struct LayerShapes {
    std::vector<FeatureShape> shapes;
    QRectF bounds;
};

std::shared_ptr<const LayerShapes> readLayer(const std::string& job, const std::string& step,
                                             const std::string& layer) {
    auto result = std::make_shared<LayerShapes>();
    std::vector<Korvo::API::featureInfo> features;
    Korvo::API::get_all_feature_info(job, step, layer, features, Korvo::API::FT_All);
    for (const Korvo::API::featureInfo& f : features) {
        FeatureShape shape;
        shape.id = f.id;
        shape.positive = f.positive;
        shape.path = featurePath(f);
        result->bounds |= shape.path.boundingRect();
        result->shapes.push_back(std::move(shape));
    }
    return result;
}

// Where the engine puts a child step's point for this instance, as a transform: read off the
// engine's own placement of three points, so the drawing cannot turn the other way.
QTransform instanceTransform(const wcref::RepeatInstance& instance) {
    const Korvo::API::point o = wcref::placePoint({0, 0}, instance.angle, instance.mirror);
    const Korvo::API::point x = wcref::placePoint({1, 0}, instance.angle, instance.mirror);
    const Korvo::API::point y = wcref::placePoint({0, 1}, instance.angle, instance.mirror);
    return QTransform(x.x - o.x, x.y - o.y, y.x - o.x, y.y - o.y, instance.position.x + o.x,
                      instance.position.y + o.y);
}

}  // namespace

// The features of one layer of one step, each outline computed once and shared by every
// instance of the step on a panel.
class LayerItem : public QGraphicsItem {
public:
    LayerItem(std::shared_ptr<const LayerShapes> shapes, QColor colour)
        : shapes_(std::move(shapes)), colour_(colour) {}

    QRectF boundingRect() const override { return shapes_->bounds; }

    void paint(QPainter* painter, const QStyleOptionGraphicsItem* option, QWidget*) override {
        painter->setPen(Qt::NoPen);
        const QRectF exposed = option->exposedRect;
        for (const FeatureShape& shape : shapes_->shapes) {
            auto mark = marks_.find(shape.id);
            const GraphicView::Mark m =
                mark == marks_.end() ? GraphicView::Mark::None : mark->second;
            if (m == GraphicView::Mark::Hidden || !shape.path.boundingRect().intersects(exposed)) {
                continue;
            }
            QColor fill = shape.positive ? colour_ : kBackground;
            if (m == GraphicView::Mark::Selected)
                fill = QColor(255, 255, 255);
            if (m == GraphicView::Mark::Highlighted)
                fill = QColor(255, 0, 255);
            painter->fillPath(shape.path, fill);
        }
    }

    void setMarks(const std::set<int>& ids, GraphicView::Mark mark) {
        for (int id : ids) {
            if (mark == GraphicView::Mark::None) {
                marks_.erase(id);
            } else {
                marks_[id] = mark;
            }
        }
        update();
    }

    void clearMarks(GraphicView::Mark mark) {
        for (auto it = marks_.begin(); it != marks_.end();) {
            it = it->second == mark ? marks_.erase(it) : std::next(it);
        }
        update();
    }

    int count(GraphicView::Mark mark) const {
        return int(std::count_if(marks_.begin(), marks_.end(),
                                 [mark](const auto& entry) { return entry.second == mark; }));
    }

private:
    std::shared_ptr<const LayerShapes> shapes_;
    std::map<int, GraphicView::Mark> marks_;
    QColor colour_;
};

GraphicView::GraphicView(QWidget* parent) : QGraphicsView(parent) {
    setScene(new QGraphicsScene(this));
    setBackgroundBrush(kBackground);
    setRenderHint(QPainter::Antialiasing);
    setMinimumSize(480, 360);
    setTransformationAnchor(QGraphicsView::AnchorUnderMouse);
    setViewportUpdateMode(QGraphicsView::SmartViewportUpdate);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setObjectName(QStringLiteral("graphicView"));
}

void GraphicView::showStep(const std::string& job, const std::string& step,
                           const std::vector<std::string>& layers) {
    const bool sameStep = job == job_ && step == step_;
    job_ = job;
    step_ = step;
    layers_ = layers;
    if (!sameStep) {
        userZoomed_ = false;
    }
    reload();
}

void GraphicView::reload() {
    clearOverlays();
    for (auto& entry : layerItems_) {
        delete entry.second;
    }
    layerItems_.clear();
    for (QGraphicsItem* item : instanceLayerItems_) {
        delete item;
    }
    instanceLayerItems_.clear();
    placements_.clear();
    int index = 0;
    for (const std::string& layer : layers_) {
        const QColor colour = layerColour(index++);
        auto* item = new LayerItem(readLayer(job_, step_, layer), colour);
        item->setZValue(index);
        scene()->addItem(item);
        layerItems_[layer] = item;
        addInstanceLayers(step_, layer, colour, QTransform(), index, 0);
    }
    drawProfileAndInstances();
    if (!userZoomed_) {
        zoomToAll();
    }
}

// Each instance of a panel shows the layer of the step it places, nested steps included.
void GraphicView::addInstanceLayers(const std::string& step, const std::string& layer,
                                    const QColor& colour, const QTransform& outer, int z,
                                    int depth) {
    std::vector<Korvo::API::step_repeat_op> rows;
    if (depth > 4 || !Korvo::API::get_step_repeat(job_, step, rows) || rows.empty()) {
        return;
    }
    std::map<std::string, std::shared_ptr<const LayerShapes>> children;
    for (const wcref::RepeatInstance& instance : wcref::expandRepeatRows(rows)) {
        const std::string& child = rows[instance.row].step_name;
        auto shapes = children.find(child);
        if (shapes == children.end()) {
            shapes = children.emplace(child, readLayer(job_, child, layer)).first;
        }
        const QTransform placement = instanceTransform(instance) * outer;
        if (layer == layers_.front()) {
            placements_.push_back(placement);
        }
        auto* item = new LayerItem(shapes->second, colour);
        item->setTransform(placement);
        item->setZValue(z);
        scene()->addItem(item);
        instanceLayerItems_.push_back(item);
        addInstanceLayers(child, layer, colour, placement, z, depth + 1);
    }
}

void GraphicView::drawProfileAndInstances() {
    for (QGraphicsItem* item : frameItems_) {
        delete item;
    }
    frameItems_.clear();
    instanceBoxes_.clear();

    std::vector<Korvo::API::point> profile;
    if (Korvo::API::get_profile(job_, step_, profile) && !profile.empty()) {
        QPolygonF outline;
        for (const auto& p : profile)
            outline << toScene(p);
        QPen pen(QColor(240, 240, 240));
        pen.setCosmetic(true);
        auto* item = scene()->addPolygon(outline, pen);
        item->setZValue(1000);
        frameItems_.push_back(item);
    }

    // Instances are placed with the engine's own geometry, so what is drawn is where the engine
    // puts them.
    std::vector<Korvo::API::step_repeat_op> rows;
    if (!Korvo::API::get_step_repeat(job_, step_, rows)) {
        return;
    }
    std::map<std::string, Korvo::API::reply_box> childBoxes;
    for (const wcref::RepeatInstance& instance : wcref::expandRepeatRows(rows)) {
        const std::string& child = rows[instance.row].step_name;
        auto box = childBoxes.find(child);
        if (box == childBoxes.end()) {
            Korvo::API::reply_box childBox;
            Korvo::API::profile_box(job_, child, childBox);
            box = childBoxes.emplace(child, childBox).first;
        }
        const Korvo::API::reply_box placed = wcref::instanceBox(box->second, instance);
        QPen pen(QColor(90, 170, 255));
        pen.setCosmetic(true);
        auto* item = scene()->addRect(
            QRectF(QPointF(placed.xmin, placed.ymin), QPointF(placed.xmax, placed.ymax)), pen);
        item->setZValue(1001);
        frameItems_.push_back(item);
        instanceBoxes_.push_back({instance.row, instance.index, item});
    }
    std::set<std::pair<int, int>> selected;
    for (size_t r = 0; r < rows.size(); ++r) {
        for (int index : rows[r].selection)
            selected.insert({int(r), index});
    }
    setInstanceSelection(selected);
}

void GraphicView::setInstanceSelection(const std::set<std::pair<int, int>>& selected) {
    for (const InstanceBox& box : instanceBoxes_) {
        const bool on = selected.count({box.row, box.index}) > 0;
        box.item->setBrush(on ? QBrush(QColor(255, 255, 0, 70)) : QBrush(Qt::NoBrush));
        QPen pen = box.item->pen();
        pen.setColor(on ? QColor(255, 255, 0) : QColor(90, 170, 255));
        box.item->setPen(pen);
    }
}

void GraphicView::setFeatureMarks(const std::string& layer, const std::set<int>& ids, Mark mark) {
    auto it = layerItems_.find(layer);
    if (it != layerItems_.end()) {
        it->second->setMarks(ids, mark);
    }
}

void GraphicView::clearFeatureMarks(Mark mark) {
    for (auto& entry : layerItems_) {
        entry.second->clearMarks(mark);
    }
}

int GraphicView::markedCount(Mark mark) const {
    int total = 0;
    for (const auto& entry : layerItems_) {
        total += entry.second->count(mark);
    }
    return total;
}

void GraphicView::setOverlays(const std::vector<Overlay>& overlays) {
    clearOverlays();
    QPen pen(QColor(255, 60, 60));
    pen.setCosmetic(true);
    pen.setWidth(2);
    for (const Overlay& overlay : overlays) {
        QPolygonF points;
        for (const auto& p : overlay.points)
            points << toScene(p);
        QGraphicsItem* item = nullptr;
        if (overlay.kind == Overlay::Box && points.size() >= 2) {
            item = scene()->addRect(QRectF(points[0], points[1]).normalized(), pen);
        } else if (overlay.kind == Overlay::Polygon) {
            item = scene()->addPolygon(points, pen, QColor(255, 60, 60, 60));
        } else if (points.size() >= 2) {
            item = scene()->addLine(QLineF(points[0], points[1]), pen);
        }
        if (item == nullptr) {
            continue;
        }
        item->setZValue(2000);
        if (!overlay.text.isEmpty()) {
            item->setToolTip(overlay.text);
        }
        overlayItems_.push_back(item);
    }
}

void GraphicView::clearOverlays() {
    for (QGraphicsItem* item : overlayItems_) {
        delete item;
    }
    overlayItems_.clear();
}

void GraphicView::zoomToBox(const Korvo::API::reply_box& box) {
    QRectF rect(QPointF(box.xmin, box.ymin), QPointF(box.xmax, box.ymax));
    rect = rect.normalized();
    // A point or a thin line still gets a readable neighbourhood.
    const double margin = std::max({rect.width(), rect.height(), 20 * kNmPerMil}) * 0.5;
    resetTransform();
    scale(1, -1);
    fitInView(rect.adjusted(-margin, -margin, margin, margin), Qt::KeepAspectRatio);
    userZoomed_ = true;
}

void GraphicView::panTo(const Korvo::API::point& centre) {
    centerOn(toScene(centre));
}

void GraphicView::zoomToAll() {
    QRectF rect = scene()->itemsBoundingRect();
    if (rect.isEmpty()) {
        return;
    }
    const double margin = std::max(rect.width(), rect.height()) * 0.03;
    resetTransform();
    scale(1, -1);
    fitInView(rect.adjusted(-margin, -margin, margin, margin), Qt::KeepAspectRatio);
    userZoomed_ = false;
}

Korvo::API::point GraphicView::toEngine(const QPoint& viewPos) const {
    const QPointF p = mapToScene(viewPos);
    return {p.x(), p.y()};
}

void GraphicView::wheelEvent(QWheelEvent* event) {
    const double factor = event->angleDelta().y() > 0 ? 1.25 : 0.8;
    scale(factor, factor);
    userZoomed_ = true;
}

void GraphicView::mousePressEvent(QMouseEvent* event) {
    pressAt_ = event->pos();
    if (event->button() == Qt::LeftButton) {
        QPen pen(QColor(255, 255, 0));
        pen.setCosmetic(true);
        pen.setStyle(Qt::DashLine);
        rubberBand_ = scene()->addRect(QRectF(), pen);
        rubberBand_->setZValue(3000);
    }
}

void GraphicView::mouseMoveEvent(QMouseEvent* event) {
    if (rubberBand_ != nullptr) {
        rubberBand_->setRect(QRectF(mapToScene(pressAt_), mapToScene(event->pos())).normalized());
    }
}

void GraphicView::mouseReleaseEvent(QMouseEvent* event) {
    delete rubberBand_;
    rubberBand_ = nullptr;
    if (event->button() != Qt::LeftButton) {
        return;
    }
    const bool shift = event->modifiers() & Qt::ShiftModifier;
    if ((event->pos() - pressAt_).manhattanLength() < 4) {
        emit pointPicked(toEngine(event->pos()), shift);
    } else {
        emit rectanglePicked(toEngine(pressAt_), toEngine(event->pos()), shift);
    }
}

void GraphicView::mouseDoubleClickEvent(QMouseEvent* event) {
    emit pointDoubleClicked(toEngine(event->pos()));
}

void GraphicView::resizeEvent(QResizeEvent* event) {
    QGraphicsView::resizeEvent(event);
    if (!userZoomed_) {
        zoomToAll();
    }
}

std::vector<GraphicView::Overlay> GraphicView::overlaysOf(
    const Korvo::API::analysis_drawing_data& data) {
    std::vector<Overlay> overlays;
    for (const Korvo::API::analysis_drawing_shape& shape : data.shapes) {
        Overlay overlay;
        overlay.kind = shape.kind == Korvo::API::check_points::box       ? Overlay::Box
                       : shape.kind == Korvo::API::check_points::polygon ? Overlay::Polygon
                                                                         : Overlay::Line;
        overlay.points.assign(shape.points, shape.points + shape.point_count);
        overlay.text = QString::fromStdString(data.value_text);
        overlays.push_back(std::move(overlay));
    }
    return overlays;
}
