#pragma once
// The demo's graphic view: the profile and features of one layer of a step, and the
// step-and-repeat instances of a panel.

#include <QWidget>
#include <functional>
#include <string>
#include <vector>

#include "Korvo_API_types.h"

class JobView : public QWidget {
    Q_OBJECT
public:
    explicit JobView(QWidget* parent = nullptr);

    void showLayer(const std::string& job, const std::string& step, const std::string& layer);
    // Colour of each feature instead of copper; an invalid colour hides the feature.
    void setFeatureColour(std::function<QColor(const Korvo::API::featureInfo&)> colour) {
        colour_ = std::move(colour);
        update();
    }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QPointF toScreen(const Korvo::API::point& p) const;
    void fitTo(const Korvo::API::reply_box& box);

    std::string job_;
    std::string step_;
    std::string layer_;
    std::vector<Korvo::API::point> profile_;
    std::vector<Korvo::API::featureInfo> features_;
    std::vector<std::vector<Korvo::API::point>> instances_;
    Korvo::API::reply_box box_;
    std::function<QColor(const Korvo::API::featureInfo&)> colour_;
    double scale_ = 1.0;
    QPointF offset_;
};
