#pragma once

#include "api/v1/commands.h"
#include "api/v1/gui_calls.h"
#include "api/v1/program_run.h"
#include "api/v1/program_state.h"
#include "core/eyetracker_interface.h"

#include <QTimer>
#include <map>
#include <optional>

class AccessPolicy;

namespace api_v1 {

/// Executes the commands of clients on the GUI thread, and publishes the state of the program. Lives on the GUI thread.
/// Only the functions of Commands may be called from any thread.
class ProgramControl : public QObject, public Commands {
    Q_OBJECT

public:
    static constexpr std::chrono::seconds defaultCallTimeout{10};
    static constexpr std::chrono::seconds saveTimeout{60};

    /// The trackers and the references must outlive the object. `journalsFolder` has the data of unsaved recordings.
    /// `callTimeout` is the time until a command is refused because the GUI thread is busy, except stopRecording().
    ProgramControl(std::vector<EyetrackerInterface *> trackers, const QString &journalsFolder, const ProgramRun &run,
                   const AccessPolicy &access, PublishedState &published,
                   std::chrono::milliseconds callTimeout = defaultCallTimeout);

    /// Sets the selected tracker. Null for none.
    void setTracker(EyetrackerInterface *tracker);
    /// Publishes the state if it has changed. Called by the object itself, except after a change of the access rights.
    void refresh();
    /// Refuses all commands from now on.
    void close() { calls_.close(); }

    [[nodiscard]] Reply selectTracker(const QString &name) override;
    [[nodiscard]] Reply startRecording(const QString &path) override;
    [[nodiscard]] Reply stopRecording() override;
    [[nodiscard]] Reply calibrate(int screen) override;
    [[nodiscard]] Reply stopCalibration() override;

Q_SIGNALS:
    /// A client wants the tracker at `index` to be selected.
    void trackerWanted(int index);

private:
    using Result = EyetrackerInterface::CalibrationResult;

    struct Calibration {
        bool isRequested = false;  ///< but has not started yet
        bool isRunning = false;
        std::optional<Result> lastResult;
        ProgramRun::TimePoint lastEnd;
    };

    void watch(EyetrackerInterface *tracker);
    void setLastRecording(const EyetrackerInterface &tracker, const QString &savedPath);
    [[nodiscard]] QJsonObject describe() const;
    [[nodiscard]] QJsonValue describeTracker() const;
    [[nodiscard]] QJsonObject describeCalibration() const;
    [[nodiscard]] QJsonObject describeAccess() const;

    [[nodiscard]] Reply call(const std::function<Reply()> &function) { return call(function, callTimeout_); }
    [[nodiscard]] Reply call(const std::function<Reply()> &function, std::chrono::milliseconds timeout);
    [[nodiscard]] Reply startRecordingNow(const QString &path);
    [[nodiscard]] Reply stopRecordingNow();
    [[nodiscard]] Reply notSaved() const;
    [[nodiscard]] Reply calibrateSoon(int screen);
    [[nodiscard]] Reply stopCalibrationSoon();

    const std::vector<EyetrackerInterface *> trackers_;
    const QString journalsFolder_;
    const ProgramRun &run_;
    const AccessPolicy &access_;
    PublishedState &published_;
    const std::chrono::milliseconds callTimeout_;
    EyetrackerInterface *tracker_ = nullptr;
    std::map<const EyetrackerInterface *, Calibration> calibrations_;
    QJsonValue lastRecording_;
    QTimer timer_;
    GuiCalls calls_;  ///< destroyed first
};

}  // namespace api_v1
