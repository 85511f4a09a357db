#include "gazepoint/record_formatter.h"

#include "gazepoint/messages.h"

namespace sim::gazepoint {

namespace {

constexpr int kDecimals = 5;
constexpr double kMetresPerMm = 0.001;

/// Appends fields to the text of one record.
class Fields {
public:
    void add(const char *name, double value) { add(name, decimals(value, kDecimals)); }
    void add(const char *name, std::int64_t value) { add(name, QByteArray::number(static_cast<qlonglong>(value))); }
    void add(const char *name, int value) { add(name, static_cast<std::int64_t>(value)); }
    void add(const char *name, bool value) { add(name, value ? 1 : 0); }
    void add(const char *name, const QByteArray &value) {
        text_.append(' ').append(name).append("=\"").append(value).append('"');
    }

    void addText(const char *fields) { text_ += fields; }

    [[nodiscard]] const QByteArray &text() const { return text_; }

private:
    QByteArray text_;
};

void addFixation(Fields *fields, const Fixation &fixation) {
    fields->add("FPOGX", fixation.centre.x);
    fields->add("FPOGY", fixation.centre.y);
    fields->add("FPOGS", fixation.start);
    fields->add("FPOGD", fixation.duration);
    fields->add("FPOGID", fixation.id);
    fields->add("FPOGV", fixation.valid);
}

struct GazeNames {
    const char *x, *y, *valid;
};

void addGaze(Fields *fields, const GazeNames &names, const Gaze &gaze) {
    fields->add(names.x, gaze.point.x);
    fields->add(names.y, gaze.point.y);
    fields->add(names.valid, gaze.valid);
}

struct PupilNames {
    const char *x, *y, *diameter, *scale, *valid;
};

void addPupil(Fields *fields, const PupilNames &names, const PupilRecord &pupil) {
    fields->add(names.x, pupil.centre.x);
    fields->add(names.y, pupil.centre.y);
    fields->add(names.diameter, pupil.diameter_px);
    fields->add(names.scale, pupil.scale);
    fields->add(names.valid, pupil.valid);
}

struct EyeNames {
    const char *x, *y, *z, *diameter, *valid;
};

void addEye(Fields *fields, const EyeNames &names, const PupilRecord &pupil) {
    fields->add(names.x, pupil.position_m.x);
    fields->add(names.y, pupil.position_m.y);
    fields->add(names.z, pupil.distance_m);
    fields->add(names.diameter, pupil.diameter_mm * kMetresPerMm);
    fields->add(names.valid, pupil.valid);
}

void addBlink(Fields *fields, const Blink &blink) {
    fields->add("BKID", blink.id);
    fields->add("BKDUR", blink.duration);
    fields->add("BKPMIN", blink.perMinute);
}

void addPupilMm(Fields *fields, const Record &record) {
    fields->add("LPMM", record.leftPupil.diameter_mm);
    fields->add("LPMMV", record.leftPupil.valid);
    fields->add("RPMM", record.rightPupil.diameter_mm);
    fields->add("RPMMV", record.rightPupil.valid);
}

void addGroup(Fields *fields, FieldGroup group, const Record &record) {
    switch (group) {
        case FieldGroup::Counter:
            return fields->add("CNT", record.count);
        case FieldGroup::Time:
            return fields->add("TIME", record.time);
        case FieldGroup::TimeTick:
            return fields->add("TIME_TICK", record.tick);
        case FieldGroup::PogFix:
            return addFixation(fields, record.fixation);
        case FieldGroup::PogLeft:
            return addGaze(fields, {"LPOGX", "LPOGY", "LPOGV"}, record.left);
        case FieldGroup::PogRight:
            return addGaze(fields, {"RPOGX", "RPOGY", "RPOGV"}, record.right);
        case FieldGroup::PogBest:
            return addGaze(fields, {"BPOGX", "BPOGY", "BPOGV"}, record.best);
        // Without the vendor's extra filter the filtered point is the best one.
        case FieldGroup::PogAac:
            return addGaze(fields, {"APOGX", "APOGY", "APOGV"}, record.best);
        case FieldGroup::PupilLeft:
            return addPupil(fields, {"LPCX", "LPCY", "LPD", "LPS", "LPV"}, record.leftPupil);
        case FieldGroup::PupilRight:
            return addPupil(fields, {"RPCX", "RPCY", "RPD", "RPS", "RPV"}, record.rightPupil);
        case FieldGroup::EyeLeft:
            return addEye(fields, {"LEYEX", "LEYEY", "LEYEZ", "LPUPILD", "LPUPILV"}, record.leftPupil);
        case FieldGroup::EyeRight:
            return addEye(fields, {"REYEX", "REYEY", "REYEZ", "RPUPILD", "RPUPILV"}, record.rightPupil);
        case FieldGroup::Cursor:
            return addGaze(fields, {"CX", "CY", "CS"}, {record.cursor, false});
        case FieldGroup::Blink:
            return addBlink(fields, record.blink);
        case FieldGroup::PupilMm:
            return addPupilMm(fields, record);
        case FieldGroup::UserData:
            return fields->add("USER", record.userData);

        // Nothing is plugged in that could fill these: they tell what a tracker without such parts tells.
        case FieldGroup::Keyboard:
            return fields->addText(R"( KB="" KBS="0")");
        case FieldGroup::Pix:
            return fields->addText(R"( PIXX="0.00000" PIXY="0.00000" PIXS="0.00000" PIXV="0")");
        case FieldGroup::Dial:
            return fields->addText(R"( DIAL="0.00000" DIALV="0")");
        case FieldGroup::Gsr:
            return fields->addText(R"( GSR="0" GSRV="0")");
        case FieldGroup::HeartRate:
            return fields->addText(R"( HR="0" HRV="0")");
        case FieldGroup::HeartRatePulse:
            return fields->addText(R"( HRP="0")");
        case FieldGroup::HeartRateInterval:
            return fields->addText(R"( HRIBI="0.000")");
        case FieldGroup::Ttl:
            return fields->addText(R"( TTL0="-1" TTL1="-1" TTLV="0")");
    }
}

}  // namespace

QByteArray formatRecord(const Record &record, const Switches &switches) {
    Fields fields;
    for (int index = 0; index < kFieldGroupCount; ++index) {
        const auto group = static_cast<FieldGroup>(index);
        if (switches.has(group))
            addGroup(&fields, group, record);
    }
    return "<REC" + fields.text() + " />";
}

}  // namespace sim::gazepoint
