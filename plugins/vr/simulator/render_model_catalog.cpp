#include "plugins/vr/simulator/render_model_catalog.h"

#include <algorithm>

namespace kesta::vrsim {

namespace {

struct Box {
    vr::HmdVector3_t centre;
    vr::HmdVector3_t half;
};

// Four vertices per face, so that every face has its own normal and the whole texture.
void AddBox(CatalogModel& model, const Box& box)
{
    struct Face {
        int axis;    // the axis of the normal
        float sign;  // its direction
        int u_axis;  // the axes the face spans
        int v_axis;
    };
    static constexpr Face kFaces[] = {{0, 1, 2, 1},  {0, -1, 2, 1}, {1, 1, 0, 2},
                                      {1, -1, 0, 2}, {2, 1, 0, 1},  {2, -1, 0, 1}};
    for (const Face& face : kFaces) {
        const auto base = static_cast<uint16_t>(model.vertices.size());
        for (int corner = 0; corner < 4; ++corner) {
            const float u = (corner == 1 || corner == 2) ? 1.0f : 0.0f;
            const float v = corner >= 2 ? 1.0f : 0.0f;
            vr::RenderModel_Vertex_t vertex{};
            vertex.vPosition.v[face.axis] = box.centre.v[face.axis] + face.sign * box.half.v[face.axis];
            vertex.vPosition.v[face.u_axis] = box.centre.v[face.u_axis] + (u * 2.0f - 1.0f) * box.half.v[face.u_axis];
            vertex.vPosition.v[face.v_axis] = box.centre.v[face.v_axis] + (v * 2.0f - 1.0f) * box.half.v[face.v_axis];
            vertex.vNormal.v[face.axis] = face.sign;
            vertex.rfTextureCoord[0] = u;
            vertex.rfTextureCoord[1] = v;
            model.vertices.push_back(vertex);
        }
        for (int i : {0, 1, 2, 0, 2, 3})
            model.indices.push_back(static_cast<uint16_t>(base + i));
    }
}

// A two-colour checkerboard, so that texture coordinates and orientation show in a picture.
CatalogTexture Checkerboard(vr::TextureID_t id, const uint8_t (&light)[3], const uint8_t (&dark)[3])
{
    CatalogTexture texture{id, 16, 16, {}};
    texture.rgba.reserve(size_t{16} * 16 * 4);
    for (int y = 0; y < 16; ++y) {
        for (int x = 0; x < 16; ++x) {
            const uint8_t* colour = ((x / 4 + y / 4) % 2 == 0) ? light : dark;
            texture.rgba.insert(texture.rgba.end(), {colour[0], colour[1], colour[2], 255});
        }
    }
    return texture;
}

CatalogModel Model(std::string_view name, vr::TextureID_t texture, std::initializer_list<Box> boxes)
{
    CatalogModel model;
    model.name = std::string(name);
    model.texture_id = texture;
    for (const Box& box : boxes)
        AddBox(model, box);
    return model;
}

// The controller: a handle, a head in front of it and a trigger below the head.
constexpr Box kHandle{{0.0f, -0.01f, 0.03f}, {0.02f, 0.015f, 0.06f}};
constexpr Box kHead{{0.0f, 0.01f, -0.05f}, {0.035f, 0.01f, 0.035f}};
constexpr Box kTrigger{{0.0f, -0.025f, -0.03f}, {0.008f, 0.01f, 0.012f}};

}  // namespace

bool IsRenderModelName(std::string_view name)
{
    return std::find(kRenderModelNames.begin(), kRenderModelNames.end(), name) != kRenderModelNames.end();
}

std::string_view DefaultRenderModel(vr::ETrackedDeviceClass device_class)
{
    switch (device_class) {
        case vr::TrackedDeviceClass_HMD:
            return kHeadsetModel;
        case vr::TrackedDeviceClass_Controller:
            return kControllerModel;
        case vr::TrackedDeviceClass_TrackingReference:
            return kBaseStationModel;
        default:
            return kTrackerModel;
    }
}

RenderModelCatalog::RenderModelCatalog()
{
    // Texture ids are arbitrary but unique within a session; models of one device share a texture.
    enum : vr::TextureID_t { kHeadsetTexture = 11, kControllerTexture = 12, kTrackerTexture = 13, kBaseTexture = 14 };
    textures_.push_back(Checkerboard(kHeadsetTexture, {200, 200, 210}, {40, 40, 48}));
    textures_.push_back(Checkerboard(kControllerTexture, {255, 160, 32}, {96, 48, 8}));
    textures_.push_back(Checkerboard(kTrackerTexture, {64, 200, 96}, {16, 64, 32}));
    textures_.push_back(Checkerboard(kBaseTexture, {120, 120, 255}, {24, 24, 80}));

    models_.push_back(Model(kHeadsetModel, kHeadsetTexture, {{{0.0f, 0.0f, -0.04f}, {0.09f, 0.05f, 0.05f}}}));
    CatalogModel controller = Model(kControllerModel, kControllerTexture, {kHandle, kHead, kTrigger});
    controller.components = {
        {"trigger", std::string(kControllerTriggerModel), uint64_t{1} << vr::k_EButton_SteamVR_Trigger,
         kTrigger.centre},
        {vr::k_pch_Controller_Component_Tip, {}, 0, {0.0f, 0.0f, -0.085f}},
        {vr::k_pch_Controller_Component_Base, {}, 0, {0.0f, -0.025f, 0.09f}},
        {vr::k_pch_Controller_Component_HandGrip, {}, 0, {0.0f, -0.01f, 0.03f}},
    };
    models_.push_back(std::move(controller));
    models_.push_back(Model(kControllerTriggerModel, kControllerTexture, {kTrigger}));
    models_.push_back(Model(kTrackerModel, kTrackerTexture, {{{0.0f, 0.0f, 0.0f}, {0.04f, 0.015f, 0.04f}}}));
    models_.push_back(Model(kBaseStationModel, kBaseTexture, {{{0.0f, 0.0f, 0.0f}, {0.04f, 0.04f, 0.03f}}}));
}

const CatalogModel* RenderModelCatalog::FindModel(std::string_view name) const
{
    for (const CatalogModel& model : models_) {
        if (model.name == name)
            return &model;
    }
    return nullptr;
}

const CatalogTexture* RenderModelCatalog::FindTexture(vr::TextureID_t id) const
{
    for (const CatalogTexture& texture : textures_) {
        if (texture.id == id)
            return &texture;
    }
    return nullptr;
}

}  // namespace kesta::vrsim
