#pragma once

#include "core/eye_tracking_sample.h"
#include "core/eyetracker_interface.h"
#include "core/guarded.h"
#include "trackers/gazepoint/gazepoint_calibration_watch.h"
#include "trackers/gazepoint/gazepoint_record_reader.h"

#include <QObject>
#include <QRect>
#include <QTcpSocket>
#include <QTimer>
#include <atomic>
#include <functional>

namespace gazepoint {

/// The connection to the vendor's server at 127.0.0.1. Each message is a line with one XML element.
///
/// The back-end creates it and moves it to a thread of its own, so that a busy window does not delay or merge records.
/// Unless stated otherwise, functions must be called on that thread. A function that sends blocks until the operating
/// system has accepted the message, at most 30 s, until an interruption of the thread is requested or until
/// interruptSend(). Without a connection, the message is dropped.
class Connection : public QObject {
    Q_OBJECT

public:
    using TakeSample = std::function<void(const EyeTrackingSample &)>;

    /// `takeSample` is called for every sample, on the thread of the connection.
    Connection(quint16 port, TakeSample takeSample);
    ~Connection() override;

    /// Starts to connect.
    void open();
    /// Closes the connection at once, without a message to the server, and starts to connect. Ends the effect of
    /// interruptSend().
    void reopen();
    /// Stops the data and disconnects.
    void close();
    /// Starts the calibration of the server. Each call is followed by one calibrationFinished().
    void calibrate();

    /// Makes functions that send return at once and drop their messages, until reopen() is called. Any thread.
    void interruptSend() { sendIsInterrupted_ = true; }
    /// Returns the tracked screen in device pixels. Empty until a server has sent it. Any thread.
    [[nodiscard]] QRect screenArea() const { return screenArea_.copy(); }

Q_SIGNALS:
    void connected();
    void disconnected();
    /// The connection could not be opened. `reason` is the error text of the socket.
    void failed(bool isRefused, const QString &reason);
    /// calibrate() has ended a running calibration and starts another one.
    void calibrationStarted();
    void calibrationFinished(EyetrackerInterface::CalibrationResult result);

private:
    void onConnected();
    void onDisconnected();
    void onError(QAbstractSocket::SocketError error);
    void onReadyRead();
    void takeRecord(const QByteArray &message);
    void takeScreenSize(const QByteArray &message);
    void watchCalibration(const QByteArray &bytes);
    void finishCalibration(EyetrackerInterface::CalibrationResult result);
    /// Returns whether the program ends while the server does not read. Queued messages would delay the end then.
    [[nodiscard]] bool isAbandoned() const;
    /// Sends a message, which has no line end.
    void send(const QByteArray &message);

    const quint16 port_;
    const TakeSample takeSample_;
    QTcpSocket socket_;
    bool isOpen_ = false;
    Screen screen_;  ///< of size 0 x 0 until the server has sent it
    Guarded<QRect> screenArea_;
    CalibrationWatch calibration_;
    QTimer calibrationTimer_;  ///< expires if the server sends no messages about the calibration
    std::atomic<bool> sendIsInterrupted_{false};
};

}  // namespace gazepoint
