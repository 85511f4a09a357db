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
    connectionHelper_ << connect(connection_, &Connection::connected, this, [this] { setConnected(true); })
                      << connect(connection_, &Connection::disconnected, this, [this] { setConnected(false); })
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
    return tr("server not running at %1").arg(QString("127.0.0.1:%1").arg(port_));
}

bool GazePoint::start() {
    queue(&Connection::open);
    return true;
}

void GazePoint::stop() {
    queue(&Connection::close);
}

void GazePoint::calibrate(QRect) {
    queue(&Connection::calibrate);
}

void GazePoint::queue(void (Connection::*call)()) {
    QMetaObject::invokeMethod(connection_, call, Qt::QueuedConnection);
}
