#include "core/eye_tracking_csv.h"

#include "core/record_saving.h"

#include <QLoggingCategory>
#include <algorithm>

namespace {

Q_LOGGING_CATEGORY(lcRecord, "ocela.record")

/// Saving and the messages about it need less than this.
constexpr std::size_t reserveBytes = 4 << 20;

std::vector<RecordColumn> buildColumns() {
    const std::vector<RecordColumn> gaze{{"X", "%"}, {"Y", "%"}, {"X_px", "px"}, {"Y_px", "px"}};
    std::vector<RecordColumn> columns{{"Timestamp", "ms"}, {"Time", "ms"}, {"Valid", ""}};
    columns.insert(columns.end(), gaze.begin(), gaze.end());
    columns.push_back({"Distance_cm", "cm"});
    std::vector<RecordColumn> eyeColumns = gaze;
    eyeColumns.insert(eyeColumns.end(), {{"Pupil_mm", "mm"}, {"PupilX_px", "px"}, {"PupilY_px", "px"}});
    for (const char *eye : {"L_", "R_"}) {
        for (const RecordColumn &column : eyeColumns)
            columns.push_back({eye + column.name, column.unit});
    }
    columns.push_back({"Focus", ""});
    return columns;
}

QStringList buildHeaders() {
    QStringList headers;
    for (const RecordColumn &column : EyeTrackingCSV::columns())
        headers << column.name;
    qCDebug(lcRecord) << "OCELACSV" << headers;
    return headers;
}

const QStringList &sampleHeaders() {
    static const QStringList headers = buildHeaders();
    return headers;
}

QMap<int, int> sampleColumnTypes() {
    QMap<int, int> types{{0, QMetaType::LongLong}};
    for (const int column : {1, 2, 5, 6, 10, 11, 13, 14, 17, 18, 20, 21})
        types[column] = QMetaType::UInt;
    for (const int column : {3, 4, 7, 8, 9, 12, 15, 16, 19, 22})
        types[column] = QMetaType::Double;
    return types;
}

/// Returns a copy of up to `maxCount` entries from `first` on.
template <typename T>
std::vector<T> copyOf(const std::deque<T> &entries, std::size_t first, std::size_t maxCount) {
    const std::size_t begin = std::min(first, entries.size());
    const std::size_t end = begin + std::min(maxCount, entries.size() - begin);
    return {entries.begin() + static_cast<std::ptrdiff_t>(begin), entries.begin() + static_cast<std::ptrdiff_t>(end)};
}

}  // namespace

EyeTrackingCSV::EyeTrackingCSV(const QString &path, bool load) {
    columnTypes_ = sampleColumnTypes();
    if (load) {
        this->load(path);
    } else {
        filePath_ = path;
        setHeaders(sampleHeaders());
        reserve_.reserve(reserveBytes);
    }
}

const std::vector<RecordColumn> &EyeTrackingCSV::columns() {
    static const std::vector<RecordColumn> columns = buildColumns();
    return columns;
}

void EyeTrackingCSV::discard() {
    if (phases_)
        phases_->discarded();
}

void EyeTrackingCSV::releaseReserve() {
    // Assigning {} would keep the capacity.
    std::vector<char>().swap(reserve_);
}

void EyeTrackingCSV::stopGrowing() {
    releaseReserve();
    if (std::exchange(growing_, false))
        qCWarning(lcRecord).noquote() << "Out of memory: the recording for" << filePath_
                                      << "gets no samples after the first" << rows().size();
}

bool EyeTrackingCSV::saveFile() {
    if (filePath_.isEmpty())
        return true;
    releaseReserve();
    const record_saving::Result result = record_saving::save(
        filePath_, fallbackFolders_, [this](QSaveFile &file) { return write(file); },
        [this](const QString &name) {
            if (phases_)
                phases_->saving(name, rows().size());
        });
    saveProblem_ = result.problem;
    if (!saveProblem_.isEmpty())
        qCWarning(lcRecord).noquote() << "Cannot save" << saveProblem_;
    if (result.path.isEmpty())
        return false;
    if (phases_)
        phases_->saved();
    if (result.path != filePath_)
        qCInfo(lcRecord).noquote() << "The recording was saved to" << result.path;
    filePath_ = result.path;
    return true;
}

void EyeTrackingCSV::addSample(const EyeTrackingSample &sample) {
    addNumbered({0, std::chrono::steady_clock::now(), sample});
}

void EyeTrackingCSV::addNumbered(const NumberedSample &entry) {
    if (!growing_)
        return;
    // If memory was exhausted while the previous row was added, there is an origin without a row.
    origins_.resize(rows_.size());
    origins_.push_back(
        {entry.number & RowOrigin::maxNumber, entry.sample.l_valid, entry.sample.r_valid, entry.arrival});
    appendRow(entry.sample);
}

bool EyeTrackingCSV::addMarker(const QString &text, std::chrono::steady_clock::time_point time, quint64 newestNumber) {
    if (markers_.size() >= maxMarkerCount)
        return false;
    RecordMarker marker{clock_.utc(time), text, newestNumber, std::nullopt};
    if (const std::size_t count = rowCountWithOrigin(); count > 0) {
        marker.number = origins_[count - 1].number;
        marker.row = count - 1;
    }
    markers_.push_back(std::move(marker));
    return true;
}

RecordSlice EyeTrackingCSV::slice(std::size_t firstRow, std::size_t firstMarker, std::size_t maxCount) const {
    RecordSlice result{rows_.slice(firstRow, maxCount), {}, {}};
    result.origins = copyOf(origins_, firstRow, result.rows.size());
    result.markers = copyOf(markers_, firstMarker, maxCount);
    return result;
}

RecordLength EyeTrackingCSV::length() const {
    RecordLength length{rows_.size(), {}};
    if (const std::size_t count = rowCountWithOrigin(); count > 0)
        length.duration =
            std::chrono::duration_cast<std::chrono::milliseconds>(origins_[count - 1].arrival - origins_[0].arrival);
    return length;
}

std::size_t EyeTrackingCSV::rowCountWithOrigin() const {
    // A loaded file has no origins. After memory ran out, there may be an origin without a row.
    return std::min(rows_.size(), origins_.size());
}

void EyeTrackingCSV::appendRow(const EyeTrackingSample &sample) {
    if (firstTimestamp_ == 0)
        firstTimestamp_ = sample.timestamp;
    // Unsigned, so that any two timestamps of a device can be subtracted without overflow.
    const auto time =
        static_cast<qint64>(static_cast<quint64>(sample.timestamp) - static_cast<quint64>(firstTimestamp_));
    rows_.append({sample.timestamp,
                  time,
                  static_cast<int>(sample.valid),
                  sample.x,
                  sample.y,
                  sample.x_px,
                  sample.y_px,
                  sample.distance_cm,
                  sample.l_x,
                  sample.l_y,
                  sample.l_x_px,
                  sample.l_y_px,
                  sample.l_pupil_mm,
                  sample.l_pupil_x,
                  sample.l_pupil_y,
                  sample.r_x,
                  sample.r_y,
                  sample.r_x_px,
                  sample.r_y_px,
                  sample.r_pupil_mm,
                  sample.r_pupil_x,
                  sample.r_pupil_y,
                  sample.focus});
}
