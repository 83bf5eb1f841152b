// Box averaging of picture parts.
#include <gtest/gtest.h>

#include "apps/viewer/picture_shrink.h"

namespace kesta {
namespace {

Picture Stripes()
{
    // 4 x 2: columns 0 and 1 black and white, columns 2 and 3 all red.
    Picture picture;
    picture.width = 4;
    picture.height = 2;
    for (int y = 0; y < 2; ++y) {
        picture.data.insert(picture.data.end(), {0, 0, 0, 255, 255, 255, 255, 255});
        picture.data.insert(picture.data.end(), {200, 0, 0, 255, 200, 0, 0, 255});
    }
    return picture;
}

TEST(PictureShrinkTest, AveragesEachBoxAndTakesOnlyTheGivenColumns)
{
    const Picture whole = ShrinkPicture(Stripes(), 0, 4, 2, 1);
    ASSERT_EQ(whole.width, 2);
    ASSERT_EQ(whole.height, 1);
    EXPECT_EQ(whole.data, (std::vector<std::uint8_t>{128, 128, 128, 255, 200, 0, 0, 255}));
    const Picture right = ShrinkPicture(Stripes(), 2, 2, 1, 1);
    EXPECT_EQ(right.data, (std::vector<std::uint8_t>{200, 0, 0, 255}));
}

TEST(PictureShrinkTest, RefusesPartsOutsideThePictureAndGrowing)
{
    EXPECT_TRUE(ShrinkPicture(Stripes(), 3, 2, 1, 1).data.empty());
    EXPECT_TRUE(ShrinkPicture(Stripes(), -1, 2, 1, 1).data.empty());
    EXPECT_TRUE(ShrinkPicture(Stripes(), 0, 4, 8, 1).data.empty());
    EXPECT_TRUE(ShrinkPicture(Stripes(), 0, 4, 2, 3).data.empty());
    EXPECT_TRUE(ShrinkPicture(Stripes(), 0, 4, 0, 1).data.empty());
    Picture truncated = Stripes();
    truncated.data.resize(8);
    EXPECT_TRUE(ShrinkPicture(truncated, 0, 4, 2, 1).data.empty());
}

}  // namespace
}  // namespace kesta
