#include "FeaturePick.h"

#include <QApplication>
#include <QLineF>
#include <algorithm>
#include <cmath>
#include <vector>

#include "GraphicView.h"
#include "Korvo_API.h"
#include "analysis/Widget_ResultsViewer.h"

namespace demo {

void forwardPicksToViewers(GraphicView* view) {
    QObject::connect(
        view, &GraphicView::pointPicked, view, [view](const Korvo::API::point& at, bool) {
            const double radius = 8.0 / std::max(std::abs(view->transform().m11()), 1e-12);
            for (QWidget* window : QApplication::topLevelWidgets()) {
                if (auto* viewer = qobject_cast<Widget_ResultsViewer*>(window);
                    viewer != nullptr && viewer->isVisible()) {
                    viewer->pickHitAt(at, radius);
                }
            }
        });
}

std::optional<PickedFeature> nearestFeature(const GraphicView& view, const Korvo::API::point& at,
                                            double radius) {
    double best = radius;
    std::optional<PickedFeature> picked;
    const QPointF click(at.x, at.y);
    for (const std::string& layer : view.displayedLayers()) {
        std::vector<Korvo::API::featureInfo> features;
        Korvo::API::get_all_feature_info(view.job(), view.step(), layer, features,
                                         Korvo::API::FT_All);
        for (Korvo::API::featureInfo& feature : features) {
            if (feature.symbol.empty()) {
                continue;
            }
            const QLineF segment(feature.start.x, feature.start.y, feature.end.x, feature.end.y);
            double distance = QLineF(segment.p1(), click).length();
            if (feature.type != Korvo::API::feature_pad && segment.length() > 0) {
                // Distance to the segment: the click projected onto it, clamped to its ends.
                const QPointF d = segment.p2() - segment.p1();
                const double t = std::clamp(
                    QPointF::dotProduct(click - segment.p1(), d) / QPointF::dotProduct(d, d), 0.0,
                    1.0);
                distance = QLineF(segment.pointAt(t), click).length();
            }
            if (distance < best) {
                best = distance;
                picked = PickedFeature{layer, std::move(feature)};
            }
        }
    }
    return picked;
}

}  // namespace demo
