#pragma once

#include "core/eyetracker_interface.h"

#include <QSize>
#include <QTcpSocket>
#include <QTimer>

/// The back-end for GazePoint trackers, which connects to the vendor's server at 127.0.0.1:4242. Each message
/// is a line with one XML element.
///
/// Created and owned by the main window. Everything runs on the GUI thread. Sending can block for up to 30 s. The
/// server shows its own calibration window. Only start() restores a lost connection. Samples are in device pixels of
/// the screen that the server tracks, without display scaling.
class GazePoint : public EyetrackerInterface {
    Q_OBJECT

public:
    static constexpr quint16 serverPort = 4242;

    /// Tests pass the `port` of their own server.
    GazePoint(const QString &dataFolder, QObject *parent, quint16 port = serverPort);
    ~GazePoint() override;

    [[nodiscard]] QString name() const override { return QStringLiteral("gazepoint"); }
    [[nodiscard]] VTSettings *settings() override { return nullptr; }
    [[nodiscard]] QWidget *createViewWidget() override { return nullptr; }

public Q_SLOTS:
    /// Starts to connect, and returns true at once. A failure to connect is not reported.
    bool start() override;
    void stop() override;
    /// Starts the calibration of the server. `area` is ignored: the server chooses the screen. It does not report the
    /// end of the calibration.
    void calibrate(QRect area) override;
    void stopCalibration() override {}

private:
    void onConnected();
    void onDisconnected();
    void onReadyRead();
    void takeRecord(const QByteArray &message);
    void takeScreenSize(const QByteArray &message);
    void send(const QByteArray &text);

    const quint16 port_;
    QTcpSocket socket_;
    QSize screenSize_{0, 0};  ///< in pixels; 0 x 0 until the server has sent it
    QTimer pollTimer_;
};
