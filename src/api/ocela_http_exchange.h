#pragma once

#include "api/api_answer.h"
#include "api/sample_json_cache.h"
#include "toolkit/connection_helper.h"

#include <QObject>
#include <QPointer>
#include <atomic>
#include <memory>

class EyetrackerInterface;
class HttpListener;
class HttpRequest;
class OcelaHTTPRequestHandler;
class QSettings;

/// The HTTP control API: lets other programs drive the selected tracker and read its samples, and serves files.
///
/// There is one in a process, made on the GUI thread after the trackers and destroyed there before them. It listens on
/// port 3735 of every interface from its construction to its destruction; if the port is taken, that is in the log and
/// the program goes on without an API. Requests are answered on the connections' threads, several at a time. What
/// changes the tracker is queued to the tracker's thread, and its outcome is not reported.
class OcelaHTTPExchange : public QObject {
    Q_OBJECT

public:
    /// Calls to the tracker that may wait for its thread. Clients that ask for more before these are done get
    /// "result": false, as the memory for waiting calls must have an end.
    static constexpr int mostPendingCalls = 1000;

    explicit OcelaHTTPExchange(QObject *parent);
    ~OcelaHTTPExchange() override;

    /// The exchange of this process, made now if there is none yet. Any thread may ask.
    [[nodiscard]] static OcelaHTTPExchange &instance();

    /// The tracker to serve from now on; null for none. It has to outlive this object or its replacement here, and any
    /// request that is being answered.
    void setTracker(EyetrackerInterface *tracker) { tracker_ = tracker; }

    /// Answers one request, of which the path alone matters. Any thread may call it. `filePath` becomes the existing
    /// file to be sent instead of the document, or empty.
    [[nodiscard]] QJsonDocument processRequest(QString path, HttpRequest &request, QString &filePath);

    /// The same before it becomes a document.
    [[nodiscard]] ApiAnswer answer(QString path) const;

    /// For turning answers of the current tracker into text.
    [[nodiscard]] SampleJsonCache &sampleJson() { return sampleJson_; }

private:
    struct Endpoint;
    static const Endpoint endpoints[];

    [[nodiscard]] ApiAnswer hello(const QString &path) const;
    [[nodiscard]] ApiAnswer startRecord(const QString &path) const;
    [[nodiscard]] ApiAnswer stopRecord(const QString &path) const;
    [[nodiscard]] ApiAnswer samples(const QString &path) const;
    [[nodiscard]] ApiAnswer lastSample(const QString &path) const;
    [[nodiscard]] ApiAnswer calibrate(const QString &path) const;
    [[nodiscard]] ApiAnswer stopCalibration(const QString &path) const;
    [[nodiscard]] ApiAnswer status(const QString &path) const;
    [[nodiscard]] ApiAnswer plainFile(QString path) const;

    void listen();
    template <typename Call>
    [[nodiscard]] ApiAnswer queue(Call call) const;

    const QString fileRoot_ = "http";  ///< relative to the working directory
    std::atomic<EyetrackerInterface *> tracker_{nullptr};
    ConnectionHelper connectionHelper_;
    const std::shared_ptr<std::atomic<int>> pendingCalls_ = std::make_shared<std::atomic<int>>(0);
    SampleJsonCache sampleJson_;

    QPointer<QSettings> settings_;  ///< the application's, unless this object ends before
    std::unique_ptr<OcelaHTTPRequestHandler> requestHandler_;
    std::unique_ptr<HttpListener> listener_;  ///< last, so that its threads end before anything they use
};
