// IVRRenderModels of the simulated runtime, reached through the client layer as an application does:
// loading with its "still loading" answers, the queries, and calls that hand it nonsense.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "plugins/vr/openvr/openvr.h"
#include "plugins/vr/openvr_tests/vrsim_test_support.h"

namespace kesta {
namespace {

using testing::IsolatedOpenVREnvironment;
using testing::ScopedVRSession;

constexpr const char* kDevices = R"({"paced": false, "devices": [
    {"class": "controller", "role": "left_hand"},
    {"class": "tracker"},
    {"class": "tracking_reference"},
    {"class": "tracker", "render_model": "norvane_vrsim_controller"}]})";

using OutstandingFunction = uint64_t (*)();

class RenderModelsTest : public ::testing::Test {
protected:
    void Start(const std::string& config)
    {
        isolated_.UseSimulatedRuntime(config);
        session_ = std::make_unique<ScopedVRSession>();
        ASSERT_EQ(session_->error, vr::VRInitError_None);
        models_ = vr::VRRenderModels();
        ASSERT_NE(models_, nullptr);
        introspection_ =
            dlopen((testing::SimulatedRuntimeFolder() + "/bin/linux64/vrclient.so").c_str(), RTLD_NOW | RTLD_NOLOAD);
        ASSERT_NE(introspection_, nullptr);
        outstanding_ = reinterpret_cast<OutstandingFunction>(dlsym(introspection_, "VrSimRenderModelsOutstanding"));
        ASSERT_NE(outstanding_, nullptr);
    }

    void TearDown() override
    {
        session_.reset();
        if (introspection_ != nullptr)
            dlclose(introspection_);
    }

    std::string RenderModelOf(vr::TrackedDeviceIndex_t device)
    {
        char name[128] = {};
        vr::ETrackedPropertyError error = vr::TrackedProp_UnknownProperty;
        session_->system->GetStringTrackedDeviceProperty(device, vr::Prop_RenderModelName_String, name, sizeof name,
                                                         &error);
        EXPECT_EQ(error, vr::TrackedProp_Success) << "device " << device;
        return name;
    }

    // Polls as an application does; returns how many "loading" answers came first.
    int LoadModel(const char* name, vr::RenderModel_t** model)
    {
        int loading = 0;
        vr::EVRRenderModelError error = vr::VRRenderModelError_Loading;
        for (; loading < 50; ++loading) {
            error = models_->LoadRenderModel_Async(name, model);
            if (error != vr::VRRenderModelError_Loading)
                break;
            EXPECT_EQ(*model, nullptr);
        }
        EXPECT_EQ(error, vr::VRRenderModelError_None) << name;
        return loading;
    }

    int LoadTexture(vr::TextureID_t id, vr::RenderModel_TextureMap_t** texture)
    {
        int loading = 0;
        vr::EVRRenderModelError error = vr::VRRenderModelError_Loading;
        for (; loading < 50; ++loading) {
            error = models_->LoadTexture_Async(id, texture);
            if (error != vr::VRRenderModelError_Loading)
                break;
        }
        EXPECT_EQ(error, vr::VRRenderModelError_None) << "texture " << id;
        return loading;
    }

    IsolatedOpenVREnvironment isolated_;
    std::unique_ptr<ScopedVRSession> session_;
    vr::IVRRenderModels* models_ = nullptr;
    void* introspection_ = nullptr;
    OutstandingFunction outstanding_ = nullptr;
};

TEST_F(RenderModelsTest, OfferedUnderItsVersionAndCachedPerModule)
{
    Start(kDevices);
    EXPECT_TRUE(vr::VR_IsInterfaceVersionValid(vr::IVRRenderModels_Version));
    EXPECT_FALSE(vr::VR_IsInterfaceVersionValid("IVRRenderModels_004"));
    vr::EVRInitError error = vr::VRInitError_Unknown;
    EXPECT_EQ(vr::VR_GetGenericInterface(vr::IVRRenderModels_Version, &error), models_);
    EXPECT_EQ(error, vr::VRInitError_None);
    EXPECT_EQ(vr::VR_GetGenericInterface("IVRRenderModels_004", &error), nullptr);
    EXPECT_EQ(error, vr::VRInitError_Init_InvalidInterface);
}

TEST_F(RenderModelsTest, EveryDeviceNamesAModelThatLoadsAfterTwoLoadingAnswers)
{
    Start(kDevices);
    EXPECT_EQ(RenderModelOf(0), "norvane_vrsim_headset");
    EXPECT_EQ(RenderModelOf(1), "norvane_vrsim_controller");
    EXPECT_EQ(RenderModelOf(2), "norvane_vrsim_tracker");
    EXPECT_EQ(RenderModelOf(3), "norvane_vrsim_base_station");
    EXPECT_EQ(RenderModelOf(4), "norvane_vrsim_controller") << "named in the configuration";

    std::set<vr::TextureID_t> textures;
    for (vr::TrackedDeviceIndex_t device = 0; device < 4; ++device) {
        const std::string name = RenderModelOf(device);
        vr::RenderModel_t* model = nullptr;
        EXPECT_EQ(LoadModel(name.c_str(), &model), 2) << name;
        ASSERT_NE(model, nullptr);
        // A closed mesh of boxes: indices in range, unit normals, texture coordinates in [0, 1].
        ASSERT_GE(model->unVertexCount, 24u);
        ASSERT_GE(model->unTriangleCount, 12u);
        for (uint32_t i = 0; i < model->unTriangleCount * 3; ++i)
            ASSERT_LT(model->rIndexData[i], model->unVertexCount);
        for (uint32_t i = 0; i < model->unVertexCount; ++i) {
            const vr::RenderModel_Vertex_t& v = model->rVertexData[i];
            const float* n = v.vNormal.v;
            EXPECT_NEAR(n[0] * n[0] + n[1] * n[1] + n[2] * n[2], 1.0f, 1e-5f);
            EXPECT_TRUE(v.rfTextureCoord[0] >= 0 && v.rfTextureCoord[0] <= 1 && v.rfTextureCoord[1] >= 0 &&
                        v.rfTextureCoord[1] <= 1);
            EXPECT_LT(std::abs(v.vPosition.v[0]) + std::abs(v.vPosition.v[1]) + std::abs(v.vPosition.v[2]), 0.3f);
        }
        textures.insert(model->diffuseTextureId);

        vr::RenderModel_TextureMap_t* texture = nullptr;
        EXPECT_EQ(LoadTexture(model->diffuseTextureId, &texture), 2) << name;
        ASSERT_NE(texture, nullptr);
        EXPECT_GT(texture->unWidth, 0);
        EXPECT_GT(texture->unHeight, 0);
        // Opaque RGBA: every fourth byte is 255.
        for (size_t i = 3; i < size_t{texture->unWidth} * texture->unHeight * 4; i += 4)
            ASSERT_EQ(texture->rubTextureMapData[i], 255);
        EXPECT_EQ(outstanding_(), 2u);
        models_->FreeRenderModel(model);
        models_->FreeTexture(texture);
        EXPECT_EQ(outstanding_(), 0u);

        // Once loaded, a model is ready at once, and each load hands out its own copy.
        vr::RenderModel_t* again = nullptr;
        vr::RenderModel_t* twice = nullptr;
        EXPECT_EQ(models_->LoadRenderModel_Async(name.c_str(), &again), vr::VRRenderModelError_None);
        EXPECT_EQ(models_->LoadRenderModel_Async(name.c_str(), &twice), vr::VRRenderModelError_None);
        EXPECT_NE(again, twice);
        EXPECT_EQ(outstanding_(), 2u);
        models_->FreeRenderModel(again);
        models_->FreeRenderModel(twice);
    }
    EXPECT_EQ(textures.size(), 4u) << "each device class has its own texture";
    EXPECT_EQ(outstanding_(), 0u);
}

TEST_F(RenderModelsTest, TheNumberOfLoadingAnswersIsConfigurable)
{
    Start(R"({"paced": false, "render_model_loading_calls": 0, "hmd_render_model": "norvane_vrsim_tracker"})");
    EXPECT_EQ(RenderModelOf(0), "norvane_vrsim_tracker");
    vr::RenderModel_t* model = nullptr;
    EXPECT_EQ(models_->LoadRenderModel_Async("norvane_vrsim_tracker", &model), vr::VRRenderModelError_None);
    ASSERT_NE(model, nullptr);
    vr::RenderModel_TextureMap_t* texture = nullptr;
    EXPECT_EQ(models_->LoadTexture_Async(model->diffuseTextureId, &texture), vr::VRRenderModelError_None);
    models_->FreeTexture(texture);
    models_->FreeRenderModel(model);
}

TEST_F(RenderModelsTest, CountNamesAndComponentsAnswerConsistently)
{
    Start(kDevices);
    const uint32_t count = models_->GetRenderModelCount();
    ASSERT_EQ(count, 5u);
    std::set<std::string> names;
    for (uint32_t i = 0; i < count; ++i) {
        const uint32_t size = models_->GetRenderModelName(i, nullptr, 0);
        ASSERT_GT(size, 1u);
        std::string name(size, 'x');
        EXPECT_EQ(models_->GetRenderModelName(i, name.data(), size), size);
        EXPECT_EQ(name[size - 1], '\0');
        name.resize(size - 1);
        names.insert(name);
        vr::RenderModel_t* model = nullptr;
        LoadModel(name.c_str(), &model);
        models_->FreeRenderModel(model);
    }
    EXPECT_EQ(names.size(), count);
    EXPECT_EQ(names.count(RenderModelOf(1)), 1u);
    char small[4] = "abc";
    EXPECT_EQ(models_->GetRenderModelName(0, small, sizeof small), sizeof("norvane_vrsim_headset"));
    EXPECT_STREQ(small, "") << "a short buffer gets no partial name";
    EXPECT_EQ(models_->GetRenderModelName(count, small, sizeof small), 0u);

    const char* controller = "norvane_vrsim_controller";
    const uint32_t components = models_->GetComponentCount(controller);
    ASSERT_EQ(components, 4u);
    std::set<std::string> component_names;
    for (uint32_t i = 0; i < components; ++i) {
        char name[64] = {};
        const uint32_t size = models_->GetComponentName(controller, i, name, sizeof name);
        EXPECT_EQ(size, std::strlen(name) + 1);
        EXPECT_TRUE(models_->RenderModelHasComponent(controller, name)) << name;
        component_names.insert(name);
    }
    EXPECT_EQ(component_names,
              (std::set<std::string>{"trigger", vr::k_pch_Controller_Component_Tip, vr::k_pch_Controller_Component_Base,
                                     vr::k_pch_Controller_Component_HandGrip}));
    EXPECT_EQ(models_->GetComponentName(controller, components, nullptr, 0), 0u);
    EXPECT_EQ(models_->GetComponentCount("norvane_vrsim_tracker"), 0u);
    EXPECT_FALSE(models_->RenderModelHasComponent(controller, "thumbstick"));

    // The trigger has a model of its own, which is one of the listed models; the tip is only a frame.
    EXPECT_EQ(models_->GetComponentButtonMask(controller, "trigger"), uint64_t{1} << vr::k_EButton_SteamVR_Trigger);
    EXPECT_EQ(models_->GetComponentButtonMask(controller, "tip"), 0u);
    char trigger_model[64] = {};
    ASSERT_GT(models_->GetComponentRenderModelName(controller, "trigger", trigger_model, sizeof trigger_model), 1u);
    EXPECT_EQ(names.count(trigger_model), 1u);
    EXPECT_EQ(models_->GetComponentRenderModelName(controller, "tip", trigger_model, sizeof trigger_model), 0u);

    EXPECT_STREQ(models_->GetRenderModelErrorNameFromEnum(vr::VRRenderModelError_Loading),
                 "VRRenderModelError_Loading");
    EXPECT_STREQ(models_->GetRenderModelErrorNameFromEnum(vr::VRRenderModelError_InvalidTexture),
                 "VRRenderModelError_InvalidTexture");
    EXPECT_STREQ(models_->GetRenderModelErrorNameFromEnum(static_cast<vr::EVRRenderModelError>(299)),
                 "Unknown render model error");

    // Models built in memory have no thumbnail and no original file: an empty answer.
    vr::EVRRenderModelError error = vr::VRRenderModelError_Loading;
    char text[16] = "x";
    EXPECT_EQ(models_->GetRenderModelThumbnailURL(controller, text, sizeof text, &error), 1u);
    EXPECT_EQ(error, vr::VRRenderModelError_None);
    EXPECT_STREQ(text, "");
    EXPECT_EQ(models_->GetRenderModelOriginalPath(controller, nullptr, 0, &error), 1u);
    EXPECT_EQ(error, vr::VRRenderModelError_BufferTooSmall);
    EXPECT_EQ(models_->GetRenderModelOriginalPath("nothing", text, sizeof text, &error), 0u);
    EXPECT_EQ(error, vr::VRRenderModelError_InvalidModel);
}

TEST_F(RenderModelsTest, ComponentStateFollowsTheControllerState)
{
    Start(kDevices);
    const char* controller = "norvane_vrsim_controller";
    vr::VRControllerState_t state{};
    vr::RenderModel_ComponentState_t component{};
    ASSERT_TRUE(models_->GetComponentState(controller, "trigger", &state, nullptr, &component));
    EXPECT_EQ(component.uProperties, uint32_t(vr::VRComponentProperty_IsVisible));
    const float resting_z = component.mTrackingToComponentRenderModel.m[2][3];

    state.ulButtonTouched = state.ulButtonPressed = uint64_t{1} << vr::k_EButton_SteamVR_Trigger;
    const vr::RenderModel_ControllerMode_State_t mode{false};
    ASSERT_TRUE(models_->GetComponentState(controller, "trigger", &state, &mode, &component));
    EXPECT_EQ(component.uProperties, uint32_t(vr::VRComponentProperty_IsVisible | vr::VRComponentProperty_IsTouched |
                                              vr::VRComponentProperty_IsPressed));
    EXPECT_GT(component.mTrackingToComponentRenderModel.m[2][3], resting_z) << "a pulled trigger moves back";

    // Frames without buttons are static, pressed or not; the tip sits at the front (-Z).
    ASSERT_TRUE(models_->GetComponentState(controller, "tip", &state, nullptr, &component));
    EXPECT_EQ(component.uProperties, uint32_t(vr::VRComponentProperty_IsVisible | vr::VRComponentProperty_IsStatic));
    EXPECT_LT(component.mTrackingToComponentLocal.m[2][3], 0.0f);

    EXPECT_FALSE(models_->GetComponentState(controller, "thumbstick", &state, nullptr, &component));
    EXPECT_FALSE(models_->GetComponentState(controller, "trigger", &state, nullptr, nullptr));
    EXPECT_TRUE(models_->GetComponentState(controller, "trigger", nullptr, nullptr, &component))
        << "no controller state reads as nothing pressed";
    EXPECT_EQ(component.uProperties, uint32_t(vr::VRComponentProperty_IsVisible));
}

TEST_F(RenderModelsTest, MalformedCallsAreRefusedAndStrayFreesIgnored)
{
    Start(kDevices);
    vr::RenderModel_t* model = reinterpret_cast<vr::RenderModel_t*>(&model);  // not null: must be cleared
    EXPECT_EQ(models_->LoadRenderModel_Async(nullptr, &model), vr::VRRenderModelError_InvalidModel);
    EXPECT_EQ(model, nullptr);
    EXPECT_EQ(models_->LoadRenderModel_Async("vr_controller_vive_1_5", &model), vr::VRRenderModelError_InvalidModel);
    EXPECT_EQ(models_->LoadRenderModel_Async("norvane_vrsim_controller", nullptr), vr::VRRenderModelError_InvalidArg);
    // A refused call does not count as a loading step: the model still loads after two answers.
    EXPECT_EQ(LoadModel("norvane_vrsim_controller", &model), 2);
    ASSERT_NE(model, nullptr);

    vr::RenderModel_TextureMap_t* texture = nullptr;
    EXPECT_EQ(models_->LoadTexture_Async(vr::INVALID_TEXTURE_ID, &texture), vr::VRRenderModelError_InvalidTexture);
    EXPECT_EQ(models_->LoadTexture_Async(model->diffuseTextureId + 1000, &texture),
              vr::VRRenderModelError_InvalidTexture);
    EXPECT_EQ(texture, nullptr);
    EXPECT_EQ(models_->LoadTexture_Async(model->diffuseTextureId, nullptr), vr::VRRenderModelError_InvalidArg);

    void* d3d_texture = &d3d_texture;
    EXPECT_EQ(models_->LoadTextureD3D11_Async(model->diffuseTextureId, nullptr, &d3d_texture),
              vr::VRRenderModelError_NotSupported);
    EXPECT_EQ(d3d_texture, nullptr);
    EXPECT_EQ(models_->LoadIntoTextureD3D11_Async(model->diffuseTextureId, nullptr),
              vr::VRRenderModelError_NotSupported);
    models_->FreeTextureD3D11(&d3d_texture);

    // Frees of what was never handed out, or was already taken back, change nothing.
    vr::RenderModel_t never_handed_out{};
    vr::RenderModel_TextureMap_t never_a_texture{};
    models_->FreeRenderModel(nullptr);
    models_->FreeRenderModel(&never_handed_out);
    models_->FreeTexture(nullptr);
    models_->FreeTexture(&never_a_texture);
    models_->FreeTexture(reinterpret_cast<vr::RenderModel_TextureMap_t*>(model));
    EXPECT_EQ(outstanding_(), 1u);
    EXPECT_GT(model->unVertexCount, 0u) << "the model handed out is still intact";
    models_->FreeRenderModel(model);
    models_->FreeRenderModel(model);
    EXPECT_EQ(outstanding_(), 0u);

    EXPECT_EQ(models_->GetComponentCount(nullptr), 0u);
    EXPECT_EQ(models_->GetComponentButtonMask(nullptr, nullptr), 0u);
    EXPECT_FALSE(models_->RenderModelHasComponent("norvane_vrsim_controller", nullptr));
    EXPECT_EQ(models_->GetComponentRenderModelName(nullptr, "trigger", nullptr, 0), 0u);
    EXPECT_EQ(models_->GetRenderModelThumbnailURL(nullptr, nullptr, 0, nullptr), 0u);
}

TEST_F(RenderModelsTest, WhatIsStillHandedOutAtShutdownIsReleasedWithTheSession)
{
    Start(R"({"paced": false, "render_model_loading_calls": 0})");
    vr::RenderModel_t* model = nullptr;
    ASSERT_EQ(models_->LoadRenderModel_Async("norvane_vrsim_headset", &model), vr::VRRenderModelError_None);
    vr::RenderModel_TextureMap_t* texture = nullptr;
    ASSERT_EQ(models_->LoadTexture_Async(model->diffuseTextureId, &texture), vr::VRRenderModelError_None);
    EXPECT_EQ(outstanding_(), 2u);
    // The leak checker of the sanitizer build sees whether shutdown really releases both.
}

// Applications poll every controller each frame; devices without inputs answer false.
TEST_F(RenderModelsTest, ControllerStateIsGivenForControllersAndTrackersOnly)
{
    Start(kDevices);
    vr::VRControllerState_t state{};
    for (int frame = 1; frame <= 3; ++frame) {
        ASSERT_EQ(vr::VRCompositor()->WaitGetPoses(nullptr, 0, nullptr, 0), vr::VRCompositorError_None);
        EXPECT_TRUE(session_->system->GetControllerState(1, &state, sizeof state));
        EXPECT_EQ(state.unPacketNum, uint32_t(frame));
        EXPECT_TRUE(session_->system->GetControllerState(2, &state, sizeof state));
        EXPECT_FALSE(session_->system->GetControllerState(3, &state, sizeof state)) << "a base station";
        EXPECT_FALSE(session_->system->GetControllerState(0, &state, sizeof state)) << "the headset";
        EXPECT_FALSE(session_->system->IsInputFocusCapturedByAnotherProcess());
    }
}

}  // namespace
}  // namespace kesta
