#include "gazepoint/record_formatter.h"

#include "gazepoint/messages.h"

namespace sim::gazepoint {

namespace {

constexpr int valueDecimals = 5;
constexpr double metresPerMm = 0.001;

QByteArray field(const char *name, const QByteArray &value) {
    return QByteArray(" ").append(name).append("=\"").append(value).append('"');
}
QByteArray field(const char *name, double value) {
    return field(name, decimals(value, valueDecimals));
}
QByteArray field(const char *name, std::int64_t value) {
    return field(name, QByteArray::number(static_cast<qlonglong>(value)));
}
QByteArray field(const char *name, int value) {
    return field(name, static_cast<std::int64_t>(value));
}
QByteArray field(const char *name, bool value) {
    return field(name, value ? 1 : 0);
}

QByteArray fixationFields(const Fixation &fixation) {
    return field("FPOGX", fixation.centre.x) + field("FPOGY", fixation.centre.y) + field("FPOGS", fixation.start_s) +
           field("FPOGD", fixation.duration_s) + field("FPOGID", fixation.id) + field("FPOGV", fixation.valid);
}

struct GazeNames {
    const char *x, *y, *valid;
};

QByteArray gazeFields(const GazeNames &names, const Gaze &gaze) {
    return field(names.x, gaze.point.x) + field(names.y, gaze.point.y) + field(names.valid, gaze.valid);
}

struct PupilNames {
    const char *x, *y, *diameter, *scale, *valid;
};

QByteArray pupilFields(const PupilNames &names, const PupilRecord &pupil) {
    return field(names.x, pupil.centre.x) + field(names.y, pupil.centre.y) + field(names.diameter, pupil.diameter_px) +
           field(names.scale, pupil.scale) + field(names.valid, pupil.valid);
}

struct EyeNames {
    const char *x, *y, *z, *diameter, *valid;
};

QByteArray eyeFields(const EyeNames &names, const PupilRecord &pupil) {
    return field(names.x, pupil.position_m.x) + field(names.y, pupil.position_m.y) + field(names.z, pupil.distance_m) +
           field(names.diameter, pupil.diameter_mm * metresPerMm) + field(names.valid, pupil.valid);
}

QByteArray blinkFields(const Blink &blink) {
    return field("BKID", blink.id) + field("BKDUR", blink.duration_s) + field("BKPMIN", blink.perMinute);
}

QByteArray pupilMmFields(const Record &record) {
    return field("LPMM", record.leftPupil.diameter_mm) + field("LPMMV", record.leftPupil.valid) +
           field("RPMM", record.rightPupil.diameter_mm) + field("RPMMV", record.rightPupil.valid);
}

QByteArray groupFields(FieldGroup group, const Record &record) {
    switch (group) {
        case FieldGroup::Counter:
            return field("CNT", record.count);
        case FieldGroup::Time:
            return field("TIME", record.time_s);
        case FieldGroup::TimeTick:
            return field("TIME_TICK", record.tick);
        case FieldGroup::PogFix:
            return fixationFields(record.fixation);
        case FieldGroup::PogLeft:
            return gazeFields({"LPOGX", "LPOGY", "LPOGV"}, record.left);
        case FieldGroup::PogRight:
            return gazeFields({"RPOGX", "RPOGY", "RPOGV"}, record.right);
        case FieldGroup::PogBest:
            return gazeFields({"BPOGX", "BPOGY", "BPOGV"}, record.best);
        // Without the extra filter of the vendor, the filtered point is the best point.
        case FieldGroup::PogAac:
            return gazeFields({"APOGX", "APOGY", "APOGV"}, record.best);
        case FieldGroup::PupilLeft:
            return pupilFields({"LPCX", "LPCY", "LPD", "LPS", "LPV"}, record.leftPupil);
        case FieldGroup::PupilRight:
            return pupilFields({"RPCX", "RPCY", "RPD", "RPS", "RPV"}, record.rightPupil);
        case FieldGroup::EyeLeft:
            return eyeFields({"LEYEX", "LEYEY", "LEYEZ", "LPUPILD", "LPUPILV"}, record.leftPupil);
        case FieldGroup::EyeRight:
            return eyeFields({"REYEX", "REYEY", "REYEZ", "RPUPILD", "RPUPILV"}, record.rightPupil);
        case FieldGroup::Cursor:
            return gazeFields({"CX", "CY", "CS"}, {record.cursor, false});
        case FieldGroup::Blink:
            return blinkFields(record.blink);
        case FieldGroup::PupilMm:
            return pupilMmFields(record);
        case FieldGroup::UserData:
            return field("USER", record.userData);

        // The values of a tracker without these parts.
        case FieldGroup::Keyboard:
            return R"( KB="" KBS="0")";
        case FieldGroup::Pix:
            return R"( PIXX="0.00000" PIXY="0.00000" PIXS="0.00000" PIXV="0")";
        case FieldGroup::Dial:
            return R"( DIAL="0.00000" DIALV="0")";
        case FieldGroup::Gsr:
            return R"( GSR="0" GSRV="0")";
        case FieldGroup::HeartRate:
            return R"( HR="0" HRV="0")";
        case FieldGroup::HeartRatePulse:
            return R"( HRP="0")";
        case FieldGroup::HeartRateInterval:
            return R"( HRIBI="0.000")";
        case FieldGroup::Ttl:
            return R"( TTL0="-1" TTL1="-1" TTLV="0")";
    }
    return {};
}

}  // namespace

QByteArray formatRecord(const Record &record, const Switches &switches) {
    QByteArray fields;
    for (int index = 0; index < fieldGroupCount; ++index) {
        const auto group = static_cast<FieldGroup>(index);
        if (switches.has(group))
            fields += groupFields(group, record);
    }
    return "<REC" + fields + " />";
}

}  // namespace sim::gazepoint
