#pragma once

#include "api/access_policy.h"
#include "api/api_answer.h"
#include "api/sample_json_cache.h"
#include "api/tracker_calls.h"
#include "api/v1/program_control.h"
#include "api/v1/router.h"
#include "toolkit/base/connection_helper.h"

#include <QObject>
#include <QPointer>
#include <memory>
#include <optional>
#include <vector>

class EyetrackerInterface;
class HttpListener;
class HttpRequest;
class Markers;
class QSettings;

/// The HTTP control API: lets other programs control the selected tracker and read its samples, and serves files.
///
/// There is one object per process. MainWindow creates it on the GUI thread after the trackers, and destroys it there
/// before the trackers. It listens on port 3735 while it exists: on all interfaces or, if other computers may not use
/// the API, only for programs on this computer. If another program uses the port, an error is logged, and the program
/// runs without the API; see listenProblem(). Requests are answered on the connections' threads, several at the same
/// time. Calls that change the tracker are queued to the tracker's thread. Their results are not reported.
class OcelaHTTPExchange : public QObject {
    Q_OBJECT

public:
    /// Further calls that wait for the tracker's thread are answered with "result": false.
    static constexpr int maxPendingCalls = TrackerCalls::maxPendingCalls;
    static constexpr quint16 port = 3735;

    explicit OcelaHTTPExchange(QObject *parent, const AccessRights &rights = AccessRights());
    ~OcelaHTTPExchange() override;

    /// Returns the exchange of this process. Creates it if there is none. May be called from any thread.
    [[nodiscard]] static OcelaHTTPExchange &instance();

    /// Returns why the API cannot be reached, as a translated sentence without a full stop that names the port, or an
    /// empty text if it can. GUI thread.
    [[nodiscard]] QString listenProblem() const;

    /// Opens the API for programs. The trackers and `markers` must outlive the exchange. Call it once, before the
    /// trackers deliver samples. GUI thread.
    void openProgramApi(const std::vector<EyetrackerInterface *> &trackers, Markers &markers,
                        const QString &journalsFolder);
    [[nodiscard]] api_v1::Router &programApi() { return programApi_; }

    /// Changes who may use the API. Applies to the next request of every connection. If `otherComputers` changes,
    /// listens on other interfaces. GUI thread.
    void setAccessRights(const AccessRights &rights);
    /// Decides about requests. Any thread.
    [[nodiscard]] const AccessPolicy &access() const { return access_; }
    /// Returns the folder that must contain the files of answers, or nothing if any file may be sent. Any thread.
    [[nodiscard]] std::optional<QString> fileConfinement() const;

    /// Selects the tracker of the following requests; null selects no tracker. The tracker must exist as long as it is
    /// selected, and until all running requests are answered. Call it on the GUI thread if the API for programs is
    /// open.
    void setTracker(EyetrackerInterface *tracker);

    /// Returns the answer to a request for `path`. Does not use `request`. If the answer is a file, sets `filePath` to
    /// that existing file, otherwise to an empty string. May be called from any thread.
    [[nodiscard]] QJsonDocument processRequest(QString path, HttpRequest &request, QString &filePath);

    /// Returns the same answer before it is serialized. If the file system hangs, the exchange may be destroyed before
    /// the call returns.
    [[nodiscard]] ApiAnswer answer(QString path) const;

    /// Returns the cache for api_answer::toJson(). A request that outlives the exchange keeps it.
    [[nodiscard]] std::shared_ptr<SampleJsonCache> sampleJson() const { return sampleJson_; }

Q_SIGNALS:
    /// A client wants another tracker to be selected. `index` is its index in the list of openProgramApi().
    void trackerWanted(int index);

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

    const QString fileRoot_ = "http";  ///< relative to the working directory
    const std::shared_ptr<TrackerCalls> trackerCalls_ = std::make_shared<TrackerCalls>();
    AccessPolicy access_;
    ConnectionHelper connectionHelper_;
    const std::shared_ptr<SampleJsonCache> sampleJson_ = std::make_shared<SampleJsonCache>();
    std::unique_ptr<api_v1::ProgramControl> programControl_;
    api_v1::Router programApi_{access_};

    QPointer<QSettings> settings_;            ///< owned by the application if this object is not destroyed first
    std::unique_ptr<HttpListener> listener_;  ///< declared last, because its threads use the other members
};
