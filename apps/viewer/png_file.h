#pragma once

#include <string>

#include "engine/picture/picture.h"

namespace kesta {

// Writes an 8-bit RGBA picture, top row first, as a PNG file. False for another format, a picture
// whose data does not match its size, or a file that cannot be written.
bool WritePngFile(const std::string& path, const Picture& picture);

}  // namespace kesta
