#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "plugins/vr/openvr/openvr.h"

namespace kesta::vrsim {

// The render models the simulated runtime knows, by name. Devices name one of them in
// Prop_RenderModelName_String; the default depends on the device class.
inline constexpr std::string_view kHeadsetModel = "norvane_vrsim_headset";
inline constexpr std::string_view kControllerModel = "norvane_vrsim_controller";
inline constexpr std::string_view kControllerTriggerModel = "norvane_vrsim_controller_trigger";
inline constexpr std::string_view kTrackerModel = "norvane_vrsim_tracker";
inline constexpr std::string_view kBaseStationModel = "norvane_vrsim_base_station";
inline constexpr std::array<std::string_view, 5> kRenderModelNames = {
    kHeadsetModel, kControllerModel, kControllerTriggerModel, kTrackerModel, kBaseStationModel};

bool IsRenderModelName(std::string_view name);
std::string_view DefaultRenderModel(vr::ETrackedDeviceClass device_class);

// A named part of a model: a local frame (tip, base, handgrip) and possibly a model of its own that
// moves with the buttons in its mask.
struct ModelComponent {
    std::string name;
    std::string render_model;  // empty when the component is only a frame
    uint64_t button_mask = 0;
    vr::HmdVector3_t origin{};  // the frame's origin in model space
};

struct CatalogModel {
    std::string name;
    std::vector<vr::RenderModel_Vertex_t> vertices;
    std::vector<uint16_t> indices;
    vr::TextureID_t texture_id = vr::INVALID_TEXTURE_ID;
    std::vector<ModelComponent> components;
};

struct CatalogTexture {
    vr::TextureID_t id = vr::INVALID_TEXTURE_ID;
    uint16_t width = 0;
    uint16_t height = 0;
    std::vector<uint8_t> rgba;  // top row first
};

// The meshes (boxes, with normals and texture coordinates, in metres, -Z forward, +Y up) and their
// small RGBA textures, built once. Read-only after construction.
class RenderModelCatalog {
public:
    RenderModelCatalog();

    const std::vector<CatalogModel>& models() const { return models_; }
    const CatalogModel* FindModel(std::string_view name) const;
    const CatalogTexture* FindTexture(vr::TextureID_t id) const;

private:
    std::vector<CatalogModel> models_;
    std::vector<CatalogTexture> textures_;
};

}  // namespace kesta::vrsim
