#include "support/splitting_parser.h"

#include "core/pixels.h"

#include <QStringList>

namespace {

class SampleBuilder {
public:
    SampleBuilder(QSize screen, qint64 timestampMs) : screen_(screen) { sample_.timestamp = timestampMs; }

    void set(const QString &key, const QString &value) {
        if (!setFlag(key, value))
            setNumber(key, value);
    }
    [[nodiscard]] const EyeTrackingSample &sample() const { return sample_; }

private:
    bool setFlag(const QString &key, const QString &value) {
        if (key == "FPOGV")
            sample_.valid = value == "1";
        else if (key == "LPV")
            sample_.l_valid = value == "1";
        else if (key == "RPV")
            sample_.r_valid = value == "1";
        else
            return false;
        return true;
    }

    /// The right eye's axes are crossed, as in the back-end.
    void setNumber(const QString &key, const QString &value) {
        if (key == "FPOGX")
            setGaze(&EyeTrackingSample::x, &EyeTrackingSample::x_px, screen_.width(), value);
        else if (key == "FPOGY")
            setGaze(&EyeTrackingSample::y, &EyeTrackingSample::y_px, screen_.height(), value);
        else if (key == "LPOGX")
            setGaze(&EyeTrackingSample::l_x, &EyeTrackingSample::l_x_px, screen_.width(), value);
        else if (key == "LPOGY")
            setGaze(&EyeTrackingSample::l_y, &EyeTrackingSample::l_y_px, screen_.height(), value);
        else if (key == "RPOGX")
            setGaze(&EyeTrackingSample::r_y, &EyeTrackingSample::r_y_px, screen_.height(), value);
        else if (key == "RPOGY")
            setGaze(&EyeTrackingSample::r_x, &EyeTrackingSample::r_x_px, screen_.width(), value);
        else if (key == "LPMM")
            sample_.l_pupil_mm = value.toFloat();
        else if (key == "RPMM")
            sample_.r_pupil_mm = value.toFloat();
    }

    void setGaze(float EyeTrackingSample::*percent, qint32 EyeTrackingSample::*pixel, int length_px,
                 const QString &value) {
        const float fraction = value.toFloat();
        sample_.*percent = fraction * 100.0F;
        sample_.*pixel = pixels::truncated(static_cast<float>(length_px) * fraction);
    }

    const QSize screen_;
    EyeTrackingSample sample_;
};

}  // namespace

EyeTrackingSample bench::parseBySplitting(const QByteArray &record, QSize screen, qint64 timestampMs) {
    SampleBuilder builder(screen, timestampMs);
    const QStringList parts = QString::fromLatin1(record).split(' ');
    for (const QString &part : parts) {
        const QStringList sides = part.split('=');
        if (sides.size() == 2)
            builder.set(sides[0], QString(sides[1]).remove('"'));
    }
    return builder.sample();
}
