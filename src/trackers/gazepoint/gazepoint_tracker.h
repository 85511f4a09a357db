#pragma once

#include "core/eyetracker_interface.h"

#include <QThread>
#include <QTimer>
#include <optional>

namespace gazepoint {
class Connection;
}

/// The back-end for GazePoint trackers. It connects to the vendor's server at 127.0.0.1:4242.
///
/// Created and owned by the main window, on the GUI thread. The connection has a thread of its own, which delivers the
/// samples. The server shows its own calibration window. Only start() and reconnect() restore a lost connection.
/// Samples are in device pixels of the screen that the server tracks, without display scaling.
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
    [[nodiscard]] bool exchangesRightEye() const override { return true; }
    [[nodiscard]] QString manufacturer() const override { return QStringLiteral("GazePoint"); }
    [[nodiscard]] QWidget *createViewWidget() override { return nullptr; }
    [[nodiscard]] QString connectionProblem() const override;
    /// Opens a new connection, even if one is open. Returns at once. A failure is reported by connectionFailed().
    void reconnect() override;
    /// Returns the screen that the server tracks. Empty until a server has sent it.
    [[nodiscard]] QRect pixelArea() const override;

public Q_SLOTS:
    /// Starts to connect, and returns true at once. A failure is reported by connectionFailed().
    bool start() override;
    /// Returns at once. Samples may arrive until disconnected() is emitted.
    void stop() override;
    /// Starts the calibration of the server. `area` is ignored: the server chooses the screen. The result is Unknown if
    /// the connection is lost, or if the server sends no message about the calibration for a minute.
    void calibrate(QRect area) override;
    void stopCalibration() override {}

private:
    /// Why the last attempt to connect has failed.
    struct Failure {
        bool isRefused;
        QString reason;  ///< the error text of the socket
    };

    /// Queues a call to the thread of the connection. Calls are run in order.
    void queue(void (gazepoint::Connection::*call)());

    const quint16 port_;
    QThread thread_;
    gazepoint::Connection *const connection_;  ///< deleted by the destructor, on its thread
    std::optional<Failure> failure_;
    QTimer pollTimer_;
};
