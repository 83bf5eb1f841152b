// PNG files as the viewer writes them, read back with the engine's picture decoder.
#include <gtest/gtest.h>

#include "apps/viewer/png_file.h"
#include "io/testing/temp_dir.h"

namespace kesta {
namespace {

TEST(PngFileTest, WritesTopRowFirstAndReadsBackTheSamePixels)
{
    testing::TempDir dir;
    Picture picture;
    picture.width = 3;
    picture.height = 2;
    for (int i = 0; i < 6; ++i)
        picture.data.insert(picture.data.end(), {static_cast<std::uint8_t>(i * 40), 7, 200, 255});
    ASSERT_TRUE(WritePngFile(dir.File("p.png"), picture));
    const std::string bytes = dir.Read("p.png");
    Picture read;
    ASSERT_TRUE(DecodePicture(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size(), read));
    EXPECT_EQ(read.width, 3);
    EXPECT_EQ(read.height, 2);
    EXPECT_EQ(read.data, picture.data);
}

TEST(PngFileTest, RefusesPicturesThatDoNotHoldWhatTheySayAndUnwritablePaths)
{
    testing::TempDir dir;
    Picture picture;
    picture.width = 2;
    picture.height = 2;
    picture.data.assign(15, 0);
    EXPECT_FALSE(WritePngFile(dir.File("short.png"), picture));
    picture.data.assign(16, 0);
    EXPECT_TRUE(WritePngFile(dir.File("ok.png"), picture));
    EXPECT_FALSE(WritePngFile(dir.File("no/such/folder/p.png"), picture));
    picture.format = kPictureRGB8;
    EXPECT_FALSE(WritePngFile(dir.File("rgb.png"), picture));
    picture.format = kPictureRGBA8;
    picture.width = 0;
    picture.data.clear();
    EXPECT_FALSE(WritePngFile(dir.File("empty.png"), picture));
}

}  // namespace
}  // namespace kesta
