#pragma once

/// A position of the gaze, in percent of the screen or as a share of it.
struct ScreenPoint {
    double x = 0;
    double y = 0;
};

/// Detects whether a tracker delivers the right eye with its two axes exchanged.
///
/// The data has no flag for it, but the combined gaze shows it: an exchanged eye is far from the combined gaze, and
/// close to it after its axes are swapped back. docs/records.md describes the rule. The dashboard uses the same rule.
class CrossedEye {
public:
    static constexpr int minSampleCount = 30;

    /// Takes one sample: the combined gaze, and the right eye as delivered. A sample with a non-finite value is
    /// skipped.
    void add(ScreenPoint combined, ScreenPoint right);

    /// Returns the last clear decision; false until there is one.
    [[nodiscard]] bool crossed() const { return crossed_; }

private:
    int sampleCount_ = 0;
    double asDelivered_ = 0;  // sum of the distances of the right eye from the combined gaze
    double exchanged_ = 0;    // the same with the axes of the right eye swapped
    bool crossed_ = false;
};
