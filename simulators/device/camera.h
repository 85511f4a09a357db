#pragma once

#include "subject/eye_state.h"
#include "subject/physical_setup.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace sim {

/// Paints the image of an eye tracker's infrared camera: 8-bit grey, with a blurred face, noise, and two eyes. An eye
/// has a dark pupil and a glint, or a closed lid.
///
/// The constructor draws the face and the eyes once. A frame is a copy of the face with the eyes at their positions,
/// and takes about half a millisecond at 2048 x 1080. The pupils lie within a pixel of the positions in EyeState.
class Camera {
public:
    Camera(int width, int height, const PhysicalSetup &setup);

    [[nodiscard]] int width() const { return width_; }
    [[nodiscard]] int height() const { return height_; }
    [[nodiscard]] std::size_t sizeBytes() const { return background_.size(); }

    /// Fills `pixels`, an array of sizeBytes() bytes.
    void paint(const EyeState &eyes, unsigned char *pixels) const;

private:
    struct Shade {
        double grey = 0;
        double opacity = 0;
    };

    /// A small image that is blended over the background.
    struct Stamp {
        int halfWidth = 0;
        int halfHeight = 0;
        std::vector<std::uint16_t> keep;   // weight of the background, in 1/256
        std::vector<std::uint16_t> light;  // grey that is added, in 1/256
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
