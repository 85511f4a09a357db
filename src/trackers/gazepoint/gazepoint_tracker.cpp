#include "trackers/gazepoint/gazepoint_tracker.h"

#include "trackers/gazepoint/gazepoint_connection.h"

using gazepoint::Connection;

namespace {

constexpr int pollIntervalMs = 1000;

}  // namespace

GazePoint::GazePoint(const QString &dataFolder, QObject *parent, quint16 port)
    : EyetrackerInterface(dataFolder, parent),
      port_(port),
      connection_(new Connection(port, [this](const EyeTrackingSample &sample) { addSample(sample); })) {
    setPixelUnit(PixelUnit::Device);
    connectionHelper_ << connect(connection_, &Connection::connected, this, [this] {
        failure_.reset();
        setConnected(true);
    });
    connectionHelper_ << connect(connection_, &Connection::disconnected, this, [this] { setConnected(false); })
                      << connect(connection_, &Connection::failed, this,
                                 [this](bool isRefused, const QString &reason) {
                                     failure_ = Failure{isRefused, reason};
                                     Q_EMIT connectionFailed();
                                 })
                      << connect(connection_, &Connection::calibrationStarted, this, &GazePoint::calibrationStarted)
                      << connect(connection_, &Connection::calibrationFinished, this, &GazePoint::calibrationFinished)
                      // The timer has no effect: that is intended.
                      << connect(&pollTimer_, &QTimer::timeout, this, [] {});
    pollTimer_.start(pollIntervalMs);

    connection_->moveToThread(&thread_);
    connect(connection_, &QObject::destroyed, &thread_, &QThread::quit, Qt::DirectConnection);
    thread_.setObjectName("GazePoint");
    thread_.start();
}

GazePoint::~GazePoint() {
    connectionHelper_.clear();
    connection_->deleteLater();
    thread_.requestInterruption();
    thread_.wait();
}

QString GazePoint::connectionProblem() const {
    if (!failure_)
        return {};
    const QString address = QString("127.0.0.1:%1").arg(port_);
    return failure_->isRefused ? tr("server not running at %1").arg(address)
                               : tr("no connection to %1: %2").arg(address, failure_->reason);
}

void GazePoint::reconnect() {
    connection_->interruptSend();
    queue(&Connection::reopen);
}

QRect GazePoint::pixelArea() const {
    return connection_->screenArea();
}

bool GazePoint::start() {
    queue(&Connection::open);
    return true;
}

void GazePoint::stop() {
    queue(&Connection::close);
}

void GazePoint::calibrate(QRect) {
    Q_EMIT calibrationStarted();
    queue(&Connection::calibrate);
}

void GazePoint::queue(void (Connection::*call)()) {
    QMetaObject::invokeMethod(connection_, call, Qt::QueuedConnection);
}
