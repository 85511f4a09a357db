#pragma once

#include <QString>

struct EyeTrackingSample;

/// The texts of one eye's column in the sample viewer.
struct EyeTexts {
    QString valid;
    QString x;
    QString y;
    QString pupil;
};

/// The texts of a sample in the sample viewer. `cm` and `mm` are the translated units.
struct SampleTexts {
    SampleTexts(const EyeTrackingSample &sample, const QString &cm, const QString &mm);

    QString valid;
    QString eyes;
    QString xPercent;
    QString yPercent;
    QString xPixels;
    QString yPixels;
    QString focus;
    QString distance;
    EyeTexts left;
    EyeTexts right;
};
