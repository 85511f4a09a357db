#pragma once

#include "subject/eye_state.h"
#include "subject/physical_setup.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace sim {

/// The picture that an eye tracker's infrared camera takes of the person: 8-bit grey, a face out of focus, grain, and
/// two eyes with dark pupils and a glint, or closed lids.
///
/// The face and the eyes are drawn once, at construction; a frame is a copy with the eyes put in place, about half a
/// millisecond at 2048 x 1080. The pupils lie where EyeState tells, to a fraction of a pixel.
class Camera {
public:
    Camera(int width, int height, const PhysicalSetup &setup);

    [[nodiscard]] int width() const { return width_; }
    [[nodiscard]] int height() const { return height_; }
    [[nodiscard]] std::size_t bytes() const { return background_.size(); }

    /// `pixels` has room for bytes().
    void paint(const EyeState &eyes, unsigned char *pixels) const;

private:
    /// What one thing of the picture looks like at a place: how bright, and how much of the background it hides.
    struct Shade {
        double grey = 0;
        double cover = 0;
    };

    /// A small picture that is laid over the background around a place.
    struct Stamp {
        int halfWidth = 0;
        int halfHeight = 0;
        std::vector<std::uint16_t> keep;   // of the background, of 256
        std::vector<std::uint16_t> light;  // what is added, of 256
    };

    static Shade openEye(double x_mm, double y_mm);
    static Shade closedEye(double x_mm, double y_mm);
    [[nodiscard]] Stamp makeStamp(Shade (*shade)(double, double)) const;
    void drawBackground();

    void drawEye(const Eye &eye, unsigned char *pixels) const;
    void put(const Stamp &stamp, Point centre, unsigned char *pixels) const;
    void drawDisc(Point centre, double radius, int grey, unsigned char *pixels) const;

    int width_;
    int height_;
    double pixelsPerMm_;
    std::vector<unsigned char> background_;
    Stamp open_;
    Stamp closed_;
};

}  // namespace sim
