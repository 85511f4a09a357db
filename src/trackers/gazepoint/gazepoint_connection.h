#pragma once

#include "core/eye_tracking_sample.h"

#include <QObject>
#include <QSize>
#include <QTcpSocket>
#include <functional>

namespace gazepoint {

/// The connection to the vendor's server at 127.0.0.1. Each message is a line with one XML element.
///
/// The back-end creates it and moves it to a thread of its own, so that a busy window does not delay or merge records.
/// All functions must be called on that thread. A function that sends blocks until the operating system has accepted
/// the message, at most 30 s or until an interruption of the thread is requested. Without a connection, the message is
/// dropped.
class Connection : public QObject {
    Q_OBJECT

public:
    using TakeSample = std::function<void(const EyeTrackingSample &)>;

    /// `takeSample` is called for every sample, on the thread of the connection.
    Connection(quint16 port, TakeSample takeSample);
    ~Connection() override;

    /// Starts to connect. A failure is not reported.
    void open();
    /// Stops the data and disconnects.
    void close();
    /// Starts the calibration of the server.
    void calibrate();

Q_SIGNALS:
    void connected();
    void disconnected();

private:
    void onConnected();
    void onDisconnected();
    void onReadyRead();
    void takeRecord(const QByteArray &message);
    void takeScreenSize(const QByteArray &message);
    /// Sends a message, which has no line end.
    void send(const QByteArray &message);

    const quint16 port_;
    const TakeSample takeSample_;
    QTcpSocket socket_;
    QSize screenSize_{0, 0};  ///< in pixels; 0 x 0 until the server has sent it
};

}  // namespace gazepoint
