#pragma once

#include "subject/eye_state.h"

/// Both eyes visible, with a different value in each field, so that no field can be mistaken for another.
inline sim::EyeState distinctEyes() {
    sim::EyeState eyes;
    eyes.left = {true, {0.1, 0.2}, 3, {0.3, 0.4}};
    eyes.right = {true, {0.5, 0.6}, 4, {0.7, 0.8}};
    eyes.distance_cm = 50;
    return eyes;
}
