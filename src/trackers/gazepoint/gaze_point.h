#pragma once

#include "core/eyetracker_interface.h"

#include <QSize>
#include <QTcpSocket>
#include <QTimer>

/// GazePoint trackers, through the server program that runs on the same machine: TCP 127.0.0.1:4242, XML
/// lines.
///
/// Created and owned by the main window. Everything runs on the GUI thread, driven by the socket; a send
/// waits up to 30 s for the server to take it. The server shows its own calibration window. Nothing
/// reconnects by itself: the next start() does.
///
/// Pixels are those of the screen that the server tracks, in that screen's own pixels.
class GazePoint : public EyetrackerInterface {
    Q_OBJECT

public:
    static constexpr quint16 serverPort = 4242;

    /// `port` is where the server listens; another one than the server's own serves tests.
    GazePoint(const QString &dataFolder, QObject *parent, quint16 port = serverPort);
    ~GazePoint() override;

    [[nodiscard]] QString name() const override { return QStringLiteral("gazepoint"); }
    [[nodiscard]] VTSettings *settings() override { return nullptr; }
    [[nodiscard]] QWidget *createViewWidget() override { return nullptr; }

public Q_SLOTS:
    /// Begins to connect and returns true at once; a server that is absent is not reported.
    bool start() override;
    void stop() override;
    /// Starts the server's calibration. It chooses the screen itself and does not report the end.
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
    QSize screenSize_{0, 0};  ///< pixels; 0 x 0 until the server has told it
    QTimer pollTimer_;
};
