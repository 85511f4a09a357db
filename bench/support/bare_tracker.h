#pragma once

#include "core/eyetracker_interface.h"

/// A tracker without a device. The benchmarks add the samples.
class BareTracker : public EyetrackerInterface {
public:
    BareTracker() : EyetrackerInterface(QString(), nullptr) {}

    [[nodiscard]] QString name() const override { return QStringLiteral("bare"); }
    [[nodiscard]] VTSettings *settings() override { return nullptr; }
    [[nodiscard]] QWidget *createViewWidget() override { return nullptr; }
    bool start() override { return true; }
    void stop() override {}
    void calibrate(QRect) override {}
    void stopCalibration() override {}
};
