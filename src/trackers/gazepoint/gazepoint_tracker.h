#pragma once

#include "core/eyetracker_interface.h"

#include <QThread>
#include <QTimer>

namespace gazepoint {
class Connection;
}

/// The back-end for GazePoint trackers. It connects to the vendor's server at 127.0.0.1:4242.
///
/// Created and owned by the main window, on the GUI thread. The connection has a thread of its own, which delivers the
/// samples. The server shows its own calibration window. Only start() restores a lost connection. Samples are in device
/// pixels of the screen that the server tracks, without display scaling.
class GazePoint : public EyetrackerInterface {
    Q_OBJECT

public:
    static constexpr quint16 serverPort = 4242;

    /// Tests pass the `port` of their own server.
    GazePoint(const QString &dataFolder, QObject *parent, quint16 port = serverPort);
    /// Waits until the commands of earlier calls are sent, but not for a server that does not read.
    ~GazePoint() override;

    [[nodiscard]] QString name() const override { return QStringLiteral("gazepoint"); }
    [[nodiscard]] VTSettings *settings() override { return nullptr; }
    [[nodiscard]] QWidget *createViewWidget() override { return nullptr; }
    [[nodiscard]] QString connectionProblem() const override;

public Q_SLOTS:
    /// Starts to connect, and returns true at once. A failure to connect is not reported.
    bool start() override;
    /// Returns at once. Samples may arrive until disconnected() is emitted.
    void stop() override;
    /// Starts the calibration of the server. `area` is ignored: the server chooses the screen. It does not report the
    /// end of the calibration.
    void calibrate(QRect area) override;
    void stopCalibration() override {}

private:
    /// Queues a call to the thread of the connection. Calls are run in order.
    void queue(void (gazepoint::Connection::*call)());

    const quint16 port_;
    QThread thread_;
    gazepoint::Connection *const connection_;  ///< deleted by the destructor, on its thread
    QTimer pollTimer_;
};
