// norvane_shrink_png: a PNG file averaged down to a width, keeping its aspect ratio. Makes the small
// pictures of the documentation from the viewer's output.

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>

#include "apps/viewer/picture_shrink.h"
#include "apps/viewer/png_file.h"

int main(int argc, char** argv)
{
    int width = 0;
    if (argc == 4)
        width = std::atoi(argv[3]);
    if (argc != 4 || width <= 0) {
        std::fprintf(stderr, "Usage: norvane_shrink_png INPUT.png OUTPUT.png WIDTH\n");
        return 2;
    }
    std::ifstream in(argv[1], std::ios::binary);
    const std::string bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    kesta::Picture picture;
    if (!kesta::DecodePicture(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size(), picture)) {
        std::fprintf(stderr, "norvane_shrink_png: %s is not a picture\n", argv[1]);
        return 1;
    }
    const int height = static_cast<int>(static_cast<long long>(picture.height) * width / picture.width);
    const kesta::Picture small = kesta::ShrinkPicture(picture, 0, picture.width, width, height);
    if (!kesta::WritePngFile(argv[2], small)) {
        std::fprintf(stderr, "norvane_shrink_png: cannot shrink %s to %d pixels wide into %s\n", argv[1], width,
                     argv[2]);
        return 1;
    }
    return 0;
}
