#include "support/splitting_parser.h"

#include "core/pixels.h"

#include <QStringList>

namespace {

void setGaze(float *percent, qint32 *pixel, int side, const QString &value) {
    const float fraction = value.toFloat();
    *percent = fraction * 100.0F;
    *pixel = truncatedToPixel(static_cast<float>(side) * fraction);
}

bool setFlag(EyeTrackingSample *sample, const QString &key, const QString &value) {
    if (key == "FPOGV")
        sample->valid = value == "1";
    else if (key == "LPV")
        sample->l_valid = value == "1";
    else if (key == "RPV")
        sample->r_valid = value == "1";
    else
        return false;
    return true;
}

/// The right eye's axes are crossed, as in the back-end.
void setNumber(EyeTrackingSample *sample, QSize screen, const QString &key, const QString &value) {
    if (key == "FPOGX")
        setGaze(&sample->x, &sample->x_px, screen.width(), value);
    else if (key == "FPOGY")
        setGaze(&sample->y, &sample->y_px, screen.height(), value);
    else if (key == "LPOGX")
        setGaze(&sample->l_x, &sample->l_x_px, screen.width(), value);
    else if (key == "LPOGY")
        setGaze(&sample->l_y, &sample->l_y_px, screen.height(), value);
    else if (key == "RPOGX")
        setGaze(&sample->r_y, &sample->r_y_px, screen.height(), value);
    else if (key == "RPOGY")
        setGaze(&sample->r_x, &sample->r_x_px, screen.width(), value);
    else if (key == "LPMM")
        sample->l_pupil_mm = value.toFloat();
    else if (key == "RPMM")
        sample->r_pupil_mm = value.toFloat();
}

}  // namespace

EyeTrackingSample bench::parseBySplitting(const QByteArray &record, QSize screen, qint64 timestampMs) {
    EyeTrackingSample sample;
    sample.timestamp = timestampMs;
    const QStringList parts = QString::fromLatin1(record).split(' ');
    for (const QString &part : parts) {
        const QStringList sides = part.split('=');
        if (sides.size() != 2)
            continue;
        const QString value = QString(sides[1]).remove('"');
        if (!setFlag(&sample, sides[0], value))
            setNumber(&sample, screen, sides[0], value);
    }
    return sample;
}
