#include "FeatureMoveHost.h"

#include <QDialog>
#include <QDialogButtonBox>
#include <QDoubleSpinBox>
#include <QFormLayout>

#include "DemoWindow.h"
#include "FeaturePick.h"
#include "GraphicView.h"
#include "Korvo_API.h"
#include "Korvo_UIAPI.h"

namespace demo {

FeatureMoveHost::FeatureMoveHost(DemoWindow* window) : QObject(window), window_(window) {
    connect(window->view(), &GraphicView::pointPicked, this,
            [this](const Korvo::API::point& at, bool) { picked(at); });
}

void FeatureMoveHost::start() {
    waiting_ = true;
    window_->log(tr("view: pick the pad or line to move"));
}

void FeatureMoveHost::picked(const Korvo::API::point& at) {
    if (!waiting_) {
        return;
    }
    waiting_ = false;
    const std::optional<PickedFeature> pick = nearestFeature(*window_->view(), at, 50 * 25400.0);
    if (!pick) {
        window_->log(tr("view: no pad or line near the pick"));
        return;
    }
    // The offsets in the display unit, converted to engine units by the unit service.
    QDialog form(window_);
    form.setWindowTitle(tr("Move a feature"));
    auto* layout = new QFormLayout(&form);
    const QString unit = QString::fromStdString(Korvo::UIAPI::getUnitStringType(window_, 1));
    QDoubleSpinBox* offsets[2];
    for (int axis = 0; axis < 2; ++axis) {
        offsets[axis] = new QDoubleSpinBox(&form);
        offsets[axis]->setRange(-100000, 100000);
        offsets[axis]->setDecimals(4);
        offsets[axis]->setSuffix(QLatin1Char(' ') + unit);
        layout->addRow(axis == 0 ? tr("X offset:") : tr("Y offset:"), offsets[axis]);
    }
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, &form);
    connect(buttons, &QDialogButtonBox::accepted, &form, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, &form, &QDialog::reject);
    layout->addRow(buttons);
    if (form.exec() != QDialog::Accepted) {
        return;
    }
    move(pick->layer, pick->feature.id,
         Korvo::UIAPI::getUnitAPIData(window_, 1, offsets[0]->value()),
         Korvo::UIAPI::getUnitAPIData(window_, 1, offsets[1]->value()));
}

bool FeatureMoveHost::move(const std::string& layer, int id, double dx, double dy) {
    GraphicView* view = window_->view();
    const std::string& job = view->job();
    const std::string& step = view->step();
    Korvo::API::featureInfo which;
    which.id = id;
    Korvo::API::clear_selected_features(job, step, layer);
    const bool moved = Korvo::API::select_feature_by_info(job, step, layer, which) &&
                       Korvo::API::transform(job, step, layer, 0, false, false, false, false, true,
                                             {}, 0.0, 1.0, 1.0, dx, dy);
    Korvo::API::clear_selected_features(job, step, layer);
    window_->log(
        moved ? tr("%1: feature %2 moved by %3, %4 (engine units)")
                    .arg(QString::fromStdString(layer))
                    .arg(id)
                    .arg(dx)
                    .arg(dy)
              : tr("%1: feature %2 could not be moved").arg(QString::fromStdString(layer)).arg(id));
    if (moved) {
        window_->redraw();
    }
    return moved;
}

}  // namespace demo
