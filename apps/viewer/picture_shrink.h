#pragma once

#include "engine/picture/picture.h"

namespace kesta {

// The part of an 8-bit RGBA picture from column `x0`, `source_width` wide and the full height,
// averaged down into `width` x `height` boxes. Empty when the part lies outside the picture or the
// new size is not smaller or equal in both directions.
Picture ShrinkPicture(const Picture& picture, int x0, int source_width, int width, int height);

}  // namespace kesta
