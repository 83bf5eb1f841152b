#include "apps/viewer/picture_shrink.h"

#include <cmath>

namespace kesta {

Picture ShrinkPicture(const Picture& picture, int x0, int source_width, int width, int height)
{
    if (picture.format != kPictureRGBA8 || x0 < 0 || source_width <= 0 || x0 + source_width > picture.width ||
        width <= 0 || height <= 0 || width > source_width || height > picture.height ||
        picture.data.size() < static_cast<std::size_t>(picture.width) * static_cast<std::size_t>(picture.height) * 4)
        return {};
    Picture small;
    small.width = width;
    small.height = height;
    small.data.assign(static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * 4, 0);
    for (int y = 0; y < height; ++y) {
        const int sy0 = y * picture.height / height;
        const int sy1 = (y + 1) * picture.height / height;
        for (int x = 0; x < width; ++x) {
            const int sx0 = x0 + x * source_width / width;
            const int sx1 = x0 + (x + 1) * source_width / width;
            const double area = static_cast<double>((sx1 - sx0) * (sy1 - sy0));
            for (int c = 0; c < 4; ++c) {
                double sum = 0.0;
                for (int sy = sy0; sy < sy1; ++sy) {
                    for (int sx = sx0; sx < sx1; ++sx)
                        sum += picture.data[(static_cast<std::size_t>(sy) * picture.width + sx) * 4 + c];
                }
                small.data[(static_cast<std::size_t>(y) * width + x) * 4 + c] =
                    static_cast<std::uint8_t>(std::lround(sum / area));
            }
        }
    }
    return small;
}

}  // namespace kesta
