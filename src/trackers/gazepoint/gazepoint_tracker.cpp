#include "trackers/gazepoint/gazepoint_tracker.h"

#include "trackers/gazepoint/gazepoint_connection.h"

using gazepoint::Connection;

namespace {

constexpr int pollIntervalMs = 1000;

}  // namespace

GazePoint::GazePoint(const QString &dataFolder, QObject *parent, quint16 port)
    : EyetrackerInterface(dataFolder, parent),
      connection_(new Connection(port, [this](const EyeTrackingSample &sample) { addSample(sample); })) {
    setPixelUnit(PixelUnit::Device);
    connectionHelper_ << connect(connection_, &Connection::connected, this, [this] { setConnected(true); })
                      << connect(connection_, &Connection::disconnected, this, [this] { setConnected(false); })
                      // The timer has no effect: that is intended.
                      << connect(&pollTimer_, &QTimer::timeout, this, [] {});
    pollTimer_.start(pollIntervalMs);

    connection_->moveToThread(&thread_);
    connect(&thread_, &QThread::finished, connection_, &QObject::deleteLater);
    thread_.setObjectName("GazePoint");
    thread_.start();
}

GazePoint::~GazePoint() {
    connectionHelper_.clear();
    queue([](Connection &connection) { connection.thread()->quit(); });
    thread_.requestInterruption();
    thread_.wait();
}

template <typename Call>
void GazePoint::queue(Call call) {
    QMetaObject::invokeMethod(
        connection_, [connection = connection_, call] { call(*connection); }, Qt::QueuedConnection);
}

bool GazePoint::start() {
    queue([](Connection &connection) { connection.open(); });
    return true;
}

void GazePoint::stop() {
    queue([](Connection &connection) {
        connection.send("<SET ID=\"ENABLE_SEND_DATA\" STATE=\"0\" />");
        connection.close();
    });
}

void GazePoint::calibrate(QRect) {
    queue([](Connection &connection) {
        connection.send("<SET ID=\"CALIBRATE_SHOW\" STATE=\"1\" />");
        connection.send("<SET ID=\"CALIBRATE_START\" STATE=\"1\" />");
    });
}
