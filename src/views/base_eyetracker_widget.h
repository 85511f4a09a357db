#pragma once

#include "toolkit/connection_helper.h"

#include <QWidget>

class EyetrackerInterface;

/// Base of the widgets that show or control the selected tracker.
///
/// The tracker is not owned and may be null. Derived classes connect to it in eyetrackerChanged() and put the
/// connections into `connections_`, so that the next tracker's arrival severs them. GUI thread only.
class BaseEyetrackerWidget : public QWidget {
    Q_OBJECT

public:
    explicit BaseEyetrackerWidget(QWidget *parent = nullptr);

    /// Binds the widget to `tracker` in place of the one before; also when it is the same one again.
    void setEyetracker(EyetrackerInterface *tracker);

protected:
    /// Called when `eyetracker_` has been set and the old connections are gone.
    virtual void eyetrackerChanged() {}

    EyetrackerInterface *eyetracker_ = nullptr;
    ConnectionHelper connections_;
};
