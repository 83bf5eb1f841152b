#include "plugins/gl/testing/golden_image.h"

#include <stb_image.h>
#include <stb_image_write.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

namespace kesta::testing {

bool WritePng(const Picture& picture, const std::string& path)
{
    if (picture.format != kPictureRGBA8 ||
        picture.data.size() < static_cast<std::size_t>(picture.width) * picture.height * 4)
        return false;
    std::error_code ignored;
    std::filesystem::create_directories(std::filesystem::path(path).parent_path(), ignored);
    return stbi_write_png(path.c_str(), picture.width, picture.height, 4, picture.data.data(), picture.width * 4) != 0;
}

bool ReadPng(const std::string& path, Picture& picture)
{
    std::ifstream file(path, std::ios::binary);
    const std::vector<std::uint8_t> bytes{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    return !bytes.empty() && DecodePicture(bytes.data(), bytes.size(), picture) && picture.format == kPictureRGBA8;
}

::testing::AssertionResult MatchesGolden(const Picture& actual, const std::string& golden_dir,
                                         const std::string& output_dir, const std::string& name,
                                         GoldenTolerance tolerance)
{
    const std::string golden_path = golden_dir + "/" + name + ".png";
    const char* update = std::getenv("NORVANE_UPDATE_GOLDEN");
    if (update && std::string(update) == "1") {
        if (!WritePng(actual, golden_path))
            return ::testing::AssertionFailure() << "cannot write " << golden_path;
        return ::testing::AssertionSuccess() << "wrote " << golden_path;
    }
    const std::string actual_path = output_dir + "/" + name + "_actual.png";
    const std::string diff_path = output_dir + "/" + name + "_diff.png";
    Picture golden;
    if (!ReadPng(golden_path, golden)) {
        WritePng(actual, actual_path);
        return ::testing::AssertionFailure()
               << "no reference picture " << golden_path << "; actual written to " << actual_path;
    }
    if (golden.width != actual.width || golden.height != actual.height) {
        WritePng(actual, actual_path);
        return ::testing::AssertionFailure()
               << "size " << actual.width << "x" << actual.height << " against " << golden.width << "x" << golden.height
               << "; actual written to " << actual_path;
    }
    Picture diff = golden;
    std::size_t stray = 0;
    int worst = 0;
    for (std::size_t pixel = 0; pixel * 4 < golden.data.size(); ++pixel) {
        int largest = 0;
        for (std::size_t c = 0; c < 4; ++c)
            largest = std::max(largest, std::abs(int(golden.data[pixel * 4 + c]) - int(actual.data[pixel * 4 + c])));
        worst = std::max(worst, largest);
        const bool bad = largest > tolerance.channel;
        stray += bad ? 1 : 0;
        // Matching pixels fade to a dim grey copy, differing ones are red.
        const std::uint8_t grey = static_cast<std::uint8_t>(
            (golden.data[pixel * 4] + golden.data[pixel * 4 + 1] + golden.data[pixel * 4 + 2]) / 12);
        const std::uint8_t out[4] = {bad ? std::uint8_t(255) : grey, bad ? std::uint8_t(0) : grey,
                                     bad ? std::uint8_t(0) : grey, 255};
        std::copy(out, out + 4, diff.data.begin() + static_cast<std::ptrdiff_t>(pixel * 4));
    }
    const std::size_t allowed =
        static_cast<std::size_t>(tolerance.stray_fraction * static_cast<double>(golden.data.size() / 4));
    if (stray <= allowed)
        return ::testing::AssertionSuccess();
    WritePng(actual, actual_path);
    WritePng(diff, diff_path);
    return ::testing::AssertionFailure() << name << ": " << stray << " pixels differ by more than " << tolerance.channel
                                         << " (largest " << worst << ", " << allowed << " allowed); see " << actual_path
                                         << " and " << diff_path;
}

}  // namespace kesta::testing
