#include "views/base_eyetracker_widget.h"

BaseEyetrackerWidget::BaseEyetrackerWidget(QWidget *parent) : QWidget(parent) {}

void BaseEyetrackerWidget::setEyetracker(EyetrackerInterface *tracker) {
    connections_.clear();
    eyetracker_ = tracker;
    eyetrackerChanged();
}
