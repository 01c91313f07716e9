#include "Widget_Filter_Searchpopup.h"

#include <glog/logging.h>

#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

#include "Korvo_API.h"
#include "Korvo_UIAPI.h"
#include "frame/ExceptionGuard.h"
#include "frame/Validators.h"
#include "toolbar/PopupParts.h"

namespace {

bool matches(const QRegularExpression& matcher, const std::string& text) {
    return !text.empty() && matcher.match(QString::fromStdString(text)).hasMatch();
}

bool featureMatches(const QRegularExpression& matcher, const Korvo::API::featureInfo& feature) {
    if (matches(matcher, feature.symbol) || matches(matcher, feature.text)) {
        return true;
    }
    for (const auto& attribute : feature.attributes) {
        if (matches(matcher, attribute.first) || matches(matcher, attribute.second) ||
            matches(matcher, attribute.first + "=" + attribute.second)) {
            return true;
        }
    }
    return false;
}

}  // namespace

Widget_Filter_Searchpopup::Widget_Filter_Searchpopup(const void* handle, QWidget* parent)
    : QWidget(parent, Qt::Window), handle_(handle) {
    setWindowFlags(Qt::WindowFlags(0x8001003));
    initSearchPopup();
}

void Widget_Filter_Searchpopup::initSearchPopup() {
    auto* find_label = wc::makeNamed<QLabel>(this, "label_Find", QT_TR_NOOP("Find :"));
    find_ = wc::makeNamed<QLineEdit>(this, "lineEdit_Search");
    find_->setValidator(wc::makeNoCjkValidator(this));
    auto* search = wc::makeNamed<QPushButton>(this, "pushButton_Search", QT_TR_NOOP("Search"));
    results_ = wc::makeNamed<QListWidget>(this, "listWidget_Results");
    count_ = wc::makeNamed<QLabel>(this, "label_Count");
    auto* close = wc::makeNamed<QPushButton>(this, "pushButton_Close", QT_TR_NOOP("Close"));

    auto* find_row = new QHBoxLayout;
    find_row->addWidget(find_label);
    find_row->addWidget(find_, 1);
    find_row->addWidget(search);
    auto* bottom = new QHBoxLayout;
    bottom->addWidget(count_, 1);
    bottom->addWidget(close);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(find_row);
    layout->addWidget(results_);
    layout->addLayout(bottom);
    resize(460, 320);

    connect(search, &QPushButton::clicked, this, &Widget_Filter_Searchpopup::on_Search_clicked);
    connect(find_, &QLineEdit::returnPressed, this, &Widget_Filter_Searchpopup::on_Search_clicked);
    connect(close, &QPushButton::clicked, this, &Widget_Filter_Searchpopup::on_Close_clicked);
    connect(results_, &QListWidget::itemActivated, this,
            [this](QListWidgetItem* item) { zoomToRow(results_->row(item)); });
    wc::setSourceText(this, this, QT_TR_NOOP("Search"));
}

void Widget_Filter_Searchpopup::set_job(const QString& job, const QString& step,
                                        const QStringList& layers) {
    job_ = job.toStdString();
    step_ = step.toStdString();
    layers_.clear();
    for (const QString& layer : layers) {
        layers_.push_back(layer.toStdString());
    }
}

void Widget_Filter_Searchpopup::set_search_text(const QString& text) {
    find_->setText(text);
}

void Widget_Filter_Searchpopup::on_Search_clicked() {
    WC_GUARDED({
        results_->clear();
        hits_.clear();
        const QString text = find_->text().trimmed();
        if (text.isEmpty()) {
            count_->clear();
            return;
        }
        const QRegularExpression matcher = wc::findMatcher(text);
        for (const std::string& layer : layers_) {
            std::vector<Korvo::API::featureInfo> features;
            if (!Korvo::API::get_all_feature_info(job_, step_, layer, features,
                                                  Korvo::API::FT_All)) {
                LOG(ERROR) << "no features of " << job_ << "/" << step_ << "/" << layer;
                continue;
            }
            for (Korvo::API::featureInfo& feature : features) {
                if (featureMatches(matcher, feature)) {
                    hits_.push_back(std::move(feature));
                }
            }
        }
        const QString unit = tr(Korvo::UIAPI::getUnitStringType(handle_, 1).c_str());
        for (const Korvo::API::featureInfo& hit : hits_) {
            const QString name = hit.text.empty() ? QString::fromStdString(hit.symbol)
                                                  : QString::fromStdString(hit.text);
            results_->addItem(QStringLiteral("%1  #%2  %3  (%4, %5) %6")
                                  .arg(QString::fromStdString(hit.layer))
                                  .arg(hit.id)
                                  .arg(name)
                                  .arg(Korvo::UIAPI::getUnitJudgeStringMetric(handle_, hit.start.x),
                                       Korvo::UIAPI::getUnitJudgeStringMetric(handle_, hit.start.y),
                                       unit));
        }
        count_->setText(tr("%n feature(s) found", nullptr, int(hits_.size())));
    });
}

void Widget_Filter_Searchpopup::zoomToRow(int row) {
    WC_GUARDED({
        if (row >= 0 && row < int(hits_.size())) {
            emit zoomtoview(hits_[row]);
        }
    });
}

void Widget_Filter_Searchpopup::on_Close_clicked() {
    WC_GUARDED({ close(); });
}

void Widget_Filter_Searchpopup::change_language() {
    WC_GUARDED({ wc::retranslate(this); });
}
