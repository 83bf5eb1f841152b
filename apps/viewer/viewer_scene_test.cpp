// The scene's reading of the VR devices: markers where poses are known, one pulse per trigger press.
#include <gtest/gtest.h>

#include <memory>

#include "apps/viewer/viewer_scene.h"
#include "platform/input/input_device.h"
#include "platform/input/input_system.h"

namespace kesta {
namespace {

// A controller whose pose and trigger the test sets, recording the effects asked of it.
class FakeController : public InputDevice {
public:
    FakeController() { pose.SetTranslation({1, 2, 3}); }
    InputDeviceKind GetType() override { return kInputDeviceTrackedController; }
    void Update() override {}
    bool IsButtonDown(int button) override { return button == ViewerScene::kTriggerButton && down; }
    bool WasButtonDown(int button) override { return button == ViewerScene::kTriggerButton && was_down; }
    Matrix4 GetMatrix(int matrix) override { return matrix == 0 ? pose : Matrix4::Identity(); }
    bool SetEffect(int effect, float strength) override
    {
        ++effects;
        last_effect = effect;
        last_strength = strength;
        return true;
    }

    // Steps the trigger to its next state, keeping the previous one, as a frame of the VR loop does.
    void Press(bool now)
    {
        was_down = down;
        down = now;
    }

    Matrix4 pose;
    bool down = false;
    bool was_down = false;
    int effects = 0;
    int last_effect = -1;
    float last_strength = 0;
};

// Triangles of the demo scene alone, without markers.
std::size_t StillTriangles()
{
    SceneGeometry still;
    AppendDemoScene(still);
    return still.triangles.size();
}

TEST(ViewerSceneTest, OneFullPulsePerPressAndNoneWhileHeldOrReleased)
{
    InputSystem input;
    auto controller = std::make_shared<FakeController>();
    input.AddDevice("VR Controller 0", controller);
    ViewerScene scene;
    const bool trigger[] = {false, true, true, false, true};
    for (const bool down : trigger) {
        controller->Press(down);
        scene.UpdateDevices(input);
    }
    EXPECT_EQ(controller->effects, 2);
    EXPECT_EQ(scene.HapticPulsesRequested(), 2u);
    EXPECT_EQ(controller->last_effect, 0);
    EXPECT_FLOAT_EQ(controller->last_strength, 1.0f);
    EXPECT_TRUE(scene.Devices()[0].trigger_down);
}

TEST(ViewerSceneTest, AMarkerOnlyForDevicesWithAPoseAtTheirPlace)
{
    InputSystem input;
    auto seen = std::make_shared<FakeController>();
    auto unseen = std::make_shared<FakeController>();
    // A controller's matrix is all zero until the runtime has given it a pose.
    unseen->pose = Matrix4{};
    for (float& v : unseen->pose.m)
        v = 0.0f;
    input.AddDevice("VR Controller 1", seen);
    input.AddDevice("VR Tracker 0", unseen);
    ViewerScene scene;
    EXPECT_EQ(scene.Geometry().triangles.size(), StillTriangles());
    scene.UpdateDevices(input);
    EXPECT_FALSE(scene.Devices()[0].seen);  // "VR Controller 0" is not registered at all
    EXPECT_TRUE(scene.Devices()[1].seen);
    EXPECT_FALSE(scene.Devices()[2].seen);
    EXPECT_EQ(scene.Devices()[1].pose.Translation(), (Vector3{1, 2, 3}));
    ASSERT_EQ(scene.Geometry().triangles.size(), StillTriangles() + 36u);
    // The marker's cube is centred on the pose.
    Vector3 centre;
    for (std::size_t i = StillTriangles(); i < scene.Geometry().triangles.size(); ++i)
        centre += scene.Geometry().triangles[i].position;
    centre = centre / 36.0f;
    EXPECT_NEAR(centre.x, 1.0f, 1e-5f);
    EXPECT_NEAR(centre.y, 2.0f, 1e-5f);
    EXPECT_NEAR(centre.z, 3.0f, 1e-5f);

    // A device that loses its pose keeps its marker where it was last seen.
    seen->pose = unseen->pose;
    scene.UpdateDevices(input);
    EXPECT_TRUE(scene.Devices()[1].seen);
    EXPECT_EQ(scene.Devices()[1].pose.Translation(), (Vector3{1, 2, 3}));
}

}  // namespace
}  // namespace kesta
