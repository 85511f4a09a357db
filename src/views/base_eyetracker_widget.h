#pragma once

#include "toolkit/base/connection_helper.h"

#include <QWidget>

class EyetrackerInterface;

/// Base class of the widgets for the selected tracker. GUI thread.
///
/// The tracker is not owned and may be null. Derived classes connect to it in eyetrackerChanged() and add the
/// connections to `connections_`, which are disconnected when the tracker changes.
class BaseEyetrackerWidget : public QWidget {
    Q_OBJECT

public:
    explicit BaseEyetrackerWidget(QWidget *parent = nullptr) : QWidget(parent) {}

    /// Sets the tracker. Reconnects even if it is the same tracker.
    void setEyetracker(EyetrackerInterface *tracker) {
        connections_.clear();
        eyetracker_ = tracker;
        eyetrackerChanged();
    }

protected:
    /// Called after `eyetracker_` was set and the old connections were disconnected.
    virtual void eyetrackerChanged() {}

    EyetrackerInterface *eyetracker_ = nullptr;
    ConnectionHelper connections_;
};
