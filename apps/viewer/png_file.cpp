#include "apps/viewer/png_file.h"

#define STB_IMAGE_WRITE_IMPLEMENTATION
#define STB_IMAGE_WRITE_STATIC
#include <stb_image_write.h>

namespace kesta {

bool WritePngFile(const std::string& path, const Picture& picture)
{
    if (picture.format != kPictureRGBA8 || picture.width <= 0 || picture.height <= 0 ||
        picture.data.size() != static_cast<std::size_t>(picture.width) * static_cast<std::size_t>(picture.height) * 4)
        return false;
    return stbi_write_png(path.c_str(), picture.width, picture.height, 4, picture.data.data(), picture.width * 4) != 0;
}

}  // namespace kesta
