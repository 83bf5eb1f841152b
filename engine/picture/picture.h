#pragma once
// A decoded picture: pixels in memory with their size and format.

#include <cstdint>
#include <string>
#include <vector>

namespace kesta {

// Picture formats the decoder produces, numbered as the picture subsystem numbers them.
enum PictureFormat : std::uint32_t {
    kPictureRGBA8 = 7,       // 8-bit red, green, blue, alpha
    kPictureRGB8 = 8,        // 8-bit red, green, blue
    kPictureRGBAFloat = 19,  // 32-bit float red, green, blue, alpha (HDR files)
};

struct Picture {
    int width = 0;
    int height = 0;
    std::uint32_t format = kPictureRGBA8;
    std::vector<std::uint8_t> data;
};

// Reads a picture file through the filesystem and decodes it: HDR files to float RGBA, anything
// else to 8-bit RGBA. False, with nothing logged, when the file is missing or not a picture.
bool LoadPicture(const std::string& path, Picture& picture);
// Decodes picture file bytes already in memory.
bool DecodePicture(const std::uint8_t* bytes, std::size_t size, Picture& picture);

}  // namespace kesta
