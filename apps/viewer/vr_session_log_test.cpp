// The session facts a host reads from the VR output's log lines.
#include <gtest/gtest.h>

#include "apps/viewer/vr_session_log.h"

namespace kesta {
namespace {

TEST(VRSessionLogTest, TakesTheLastSessionOfTheLog)
{
    const char* log =
        "OpenVR initialization starting\n"
        "OpenVR initialized: OLD-1 (old)\n"
        "OpenVR recommended render target size 10x20\n"
        "OpenVR shutting down\n"
        "OpenVR initialization starting\n"
        "OpenVR initialized: VRSIM-HMD-0001 (norvane_vrsim)\n"
        "OpenVR recommended render target size 1512x1680\n"
        "OpenVR ready\n";
    VRSessionLog session;
    ASSERT_TRUE(ParseVRSessionLog(log, session));
    EXPECT_EQ(session.serial, "VRSIM-HMD-0001");
    EXPECT_EQ(session.tracking_system, "norvane_vrsim");
    EXPECT_EQ(session.render_width, 1512);
    EXPECT_EQ(session.render_height, 1680);
}

TEST(VRSessionLogTest, ASerialWithParenthesesAndAnEmptySystemStillSplitAtTheLastOne)
{
    VRSessionLog session;
    ASSERT_TRUE(
        ParseVRSessionLog("OpenVR initialized: A (B) C ()\nOpenVR recommended render target size 1x2", session));
    EXPECT_EQ(session.serial, "A (B) C");
    EXPECT_EQ(session.tracking_system, "");
    EXPECT_EQ(session.render_height, 2);
}

TEST(VRSessionLogTest, RefusesAMissingOrBrokenLineAndKeepsWhatItHad)
{
    VRSessionLog session;
    session.serial = "kept";
    for (const char* log : {"", "OpenVR initialized: X (Y)\n", "OpenVR recommended render target size 1x2\n",
                            "OpenVR initialized: X (Y)\nOpenVR recommended render target size 1x\n",
                            "OpenVR initialized: X (Y)\nOpenVR recommended render target size 0x5\n",
                            "OpenVR initialized: X\nOpenVR recommended render target size 1x2\n",
                            "  OpenVR initialized: X (Y)\nOpenVR recommended render target size 1x2\n"}) {
        EXPECT_FALSE(ParseVRSessionLog(log, session)) << log;
        EXPECT_EQ(session.serial, "kept");
    }
}

}  // namespace
}  // namespace kesta
