#pragma once

#include "core/eyetracker_interface.h"

#include <QStringList>

/// A tracker without a device. Stores the names of the called operations in order.
class FakeTracker : public EyetrackerInterface {
public:
    explicit FakeTracker(QObject *parent = nullptr) : EyetrackerInterface(QString(), parent) {}

    [[nodiscard]] QString name() const override { return QStringLiteral("fake"); }
    [[nodiscard]] VTSettings *settings() override { return nullptr; }
    [[nodiscard]] QWidget *createViewWidget() override { return nullptr; }
    [[nodiscard]] QString connectionProblem() const override { return QStringLiteral("no device"); }

    bool start() override {
        calls << "start";
        return true;
    }
    void stop() override { calls << "stop"; }
    void calibrate(QRect area) override {
        calls << "calibrate";
        lastArea = area;
    }
    void stopCalibration() override { calls << "stopCalibration"; }

    QStringList calls;
    QRect lastArea;
};
