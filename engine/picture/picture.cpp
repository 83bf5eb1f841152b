#include "engine/picture/picture.h"

#include <stb_image.h>

#include <climits>
#include <cstring>

#include "io/filesystem.h"

namespace kesta {

bool DecodePicture(const std::uint8_t* bytes, std::size_t size, Picture& picture)
{
    if (!bytes || size == 0 || size > static_cast<std::size_t>(INT_MAX))
        return false;
    const int length = static_cast<int>(size);
    int width = 0, height = 0, channels = 0;
    if (stbi_is_hdr_from_memory(bytes, length)) {
        float* pixels = stbi_loadf_from_memory(bytes, length, &width, &height, &channels, 4);
        if (!pixels)
            return false;
        picture.format = kPictureRGBAFloat;
        picture.data.resize(static_cast<std::size_t>(width) * height * 4 * sizeof(float));
        std::memcpy(picture.data.data(), pixels, picture.data.size());
        stbi_image_free(pixels);
    } else {
        stbi_uc* pixels = stbi_load_from_memory(bytes, length, &width, &height, &channels, 4);
        if (!pixels)
            return false;
        picture.format = kPictureRGBA8;
        picture.data.assign(pixels, pixels + static_cast<std::size_t>(width) * height * 4);
        stbi_image_free(pixels);
    }
    picture.width = width;
    picture.height = height;
    return true;
}

bool LoadPicture(const std::string& path, Picture& picture)
{
    std::vector<std::uint8_t> bytes;
    if (!g_filesystem || !g_filesystem->FileToData(path, bytes))
        return false;
    return DecodePicture(bytes.data(), bytes.size(), picture);
}

}  // namespace kesta
