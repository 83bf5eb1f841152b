#include "plugins/vr/simulator/sim_render_models.h"

#include <string_view>

#include "plugins/vr/simulator/openvr_enum_names.h"

namespace kesta::vrsim {

namespace {

// The two-call protocol of the name queries: the result is the size needed including the terminating
// zero; a missing or too small buffer gets an empty string (when it has room for one) and no text.
uint32_t CopyName(std::string_view value, char* buffer, uint32_t size)
{
    const auto needed = static_cast<uint32_t>(value.size() + 1);
    if (buffer == nullptr || size < needed) {
        if (buffer != nullptr && size > 0)
            buffer[0] = '\0';
        return needed;
    }
    value.copy(buffer, value.size());
    buffer[value.size()] = '\0';
    return needed;
}

vr::HmdMatrix34_t Translation(float x, float y, float z)
{
    vr::HmdMatrix34_t m{};
    m.m[0][0] = m.m[1][1] = m.m[2][2] = 1.0f;
    m.m[0][3] = x;
    m.m[1][3] = y;
    m.m[2][3] = z;
    return m;
}

// How far a fully pulled trigger moves back towards the handle, in metres.
constexpr float kTriggerTravel = 0.006f;

}  // namespace

bool SimRenderModels::Ready(std::map<std::string, uint32_t>& requests, const std::string& key)
{
    uint32_t& count = requests[key];
    if (count < loading_calls_) {
        ++count;
        return false;
    }
    return true;
}

vr::EVRRenderModelError SimRenderModels::LoadRenderModel_Async(const char* pchRenderModelName,
                                                               vr::RenderModel_t** ppRenderModel)
{
    if (ppRenderModel == nullptr)
        return vr::VRRenderModelError_InvalidArg;
    *ppRenderModel = nullptr;
    const CatalogModel* model = pchRenderModelName != nullptr ? catalog_.FindModel(pchRenderModelName) : nullptr;
    if (model == nullptr)
        return vr::VRRenderModelError_InvalidModel;
    std::lock_guard lock(mutex_);
    if (!Ready(model_requests_, model->name))
        return vr::VRRenderModelError_Loading;
    auto copy = std::make_unique<ModelCopy>();
    copy->vertices = model->vertices;
    copy->indices = model->indices;
    copy->header.rVertexData = copy->vertices.data();
    copy->header.unVertexCount = static_cast<uint32_t>(copy->vertices.size());
    copy->header.rIndexData = copy->indices.data();
    copy->header.unTriangleCount = static_cast<uint32_t>(copy->indices.size() / 3);
    copy->header.diffuseTextureId = model->texture_id;
    *ppRenderModel = &copy->header;
    models_out_.emplace(&copy->header, std::move(copy));
    return vr::VRRenderModelError_None;
}

// A pointer that this runtime did not hand out, or already took back, is ignored.
void SimRenderModels::FreeRenderModel(vr::RenderModel_t* pRenderModel)
{
    std::lock_guard lock(mutex_);
    models_out_.erase(pRenderModel);
}

vr::EVRRenderModelError SimRenderModels::LoadTexture_Async(vr::TextureID_t textureId,
                                                           vr::RenderModel_TextureMap_t** ppTexture)
{
    if (ppTexture == nullptr)
        return vr::VRRenderModelError_InvalidArg;
    *ppTexture = nullptr;
    const CatalogTexture* texture = catalog_.FindTexture(textureId);
    if (texture == nullptr)
        return vr::VRRenderModelError_InvalidTexture;
    std::lock_guard lock(mutex_);
    if (!Ready(texture_requests_, std::to_string(textureId)))
        return vr::VRRenderModelError_Loading;
    auto copy = std::make_unique<TextureCopy>();
    copy->rgba = texture->rgba;
    copy->header.unWidth = texture->width;
    copy->header.unHeight = texture->height;
    copy->header.rubTextureMapData = copy->rgba.data();
    *ppTexture = &copy->header;
    textures_out_.emplace(&copy->header, std::move(copy));
    return vr::VRRenderModelError_None;
}

void SimRenderModels::FreeTexture(vr::RenderModel_TextureMap_t* pTexture)
{
    std::lock_guard lock(mutex_);
    textures_out_.erase(pTexture);
}

// There is no Direct3D on this platform.
vr::EVRRenderModelError SimRenderModels::LoadTextureD3D11_Async(vr::TextureID_t, void*, void** ppD3D11Texture2D)
{
    if (ppD3D11Texture2D != nullptr)
        *ppD3D11Texture2D = nullptr;
    return vr::VRRenderModelError_NotSupported;
}

vr::EVRRenderModelError SimRenderModels::LoadIntoTextureD3D11_Async(vr::TextureID_t, void*)
{
    return vr::VRRenderModelError_NotSupported;
}

void SimRenderModels::FreeTextureD3D11(void*) {}

uint32_t SimRenderModels::GetRenderModelName(uint32_t unRenderModelIndex, char* pchRenderModelName,
                                             uint32_t unRenderModelNameLen)
{
    if (unRenderModelIndex >= catalog_.models().size()) {
        CopyName({}, pchRenderModelName, unRenderModelNameLen);
        return 0;
    }
    return CopyName(catalog_.models()[unRenderModelIndex].name, pchRenderModelName, unRenderModelNameLen);
}

uint32_t SimRenderModels::GetRenderModelCount() { return static_cast<uint32_t>(catalog_.models().size()); }

uint32_t SimRenderModels::GetComponentCount(const char* pchRenderModelName)
{
    const CatalogModel* model = pchRenderModelName != nullptr ? catalog_.FindModel(pchRenderModelName) : nullptr;
    return model != nullptr ? static_cast<uint32_t>(model->components.size()) : 0;
}

uint32_t SimRenderModels::GetComponentName(const char* pchRenderModelName, uint32_t unComponentIndex,
                                           char* pchComponentName, uint32_t unComponentNameLen)
{
    const CatalogModel* model = pchRenderModelName != nullptr ? catalog_.FindModel(pchRenderModelName) : nullptr;
    if (model == nullptr || unComponentIndex >= model->components.size()) {
        CopyName({}, pchComponentName, unComponentNameLen);
        return 0;
    }
    return CopyName(model->components[unComponentIndex].name, pchComponentName, unComponentNameLen);
}

const ModelComponent* SimRenderModels::FindComponent(const char* model_name, const char* component_name) const
{
    const CatalogModel* model = model_name != nullptr ? catalog_.FindModel(model_name) : nullptr;
    if (model == nullptr || component_name == nullptr)
        return nullptr;
    for (const ModelComponent& component : model->components) {
        if (component.name == component_name)
            return &component;
    }
    return nullptr;
}

uint64_t SimRenderModels::GetComponentButtonMask(const char* pchRenderModelName, const char* pchComponentName)
{
    const ModelComponent* component = FindComponent(pchRenderModelName, pchComponentName);
    return component != nullptr ? component->button_mask : 0;
}

// 0 for an unknown component and for one that is only a frame (it has no model to draw).
uint32_t SimRenderModels::GetComponentRenderModelName(const char* pchRenderModelName, const char* pchComponentName,
                                                      char* pchComponentRenderModelName,
                                                      uint32_t unComponentRenderModelNameLen)
{
    const ModelComponent* component = FindComponent(pchRenderModelName, pchComponentName);
    if (component == nullptr || component->render_model.empty()) {
        CopyName({}, pchComponentRenderModelName, unComponentRenderModelNameLen);
        return 0;
    }
    return CopyName(component->render_model, pchComponentRenderModelName, unComponentRenderModelNameLen);
}

// Components are always visible. One without buttons is static; one with buttons is touched or
// pressed as the controller state says, and a pressed trigger is drawn pulled back. A missing
// controller state counts as nothing pressed; the controller mode does not change anything here.
bool SimRenderModels::GetComponentState(const char* pchRenderModelName, const char* pchComponentName,
                                        const vr::VRControllerState_t* pControllerState,
                                        const vr::RenderModel_ControllerMode_State_t*,
                                        vr::RenderModel_ComponentState_t* pComponentState)
{
    const ModelComponent* component = FindComponent(pchRenderModelName, pchComponentName);
    if (component == nullptr || pComponentState == nullptr)
        return false;
    const uint64_t touched = pControllerState != nullptr ? pControllerState->ulButtonTouched : 0;
    const uint64_t pressed = pControllerState != nullptr ? pControllerState->ulButtonPressed : 0;
    vr::VRComponentProperties properties = vr::VRComponentProperty_IsVisible;
    if (component->button_mask == 0)
        properties |= vr::VRComponentProperty_IsStatic;
    if ((touched & component->button_mask) != 0)
        properties |= vr::VRComponentProperty_IsTouched;
    const bool is_pressed = (pressed & component->button_mask) != 0;
    if (is_pressed)
        properties |= vr::VRComponentProperty_IsPressed;
    const float travel = is_pressed ? kTriggerTravel : 0.0f;
    pComponentState->mTrackingToComponentRenderModel = Translation(0.0f, 0.0f, travel);
    pComponentState->mTrackingToComponentLocal =
        Translation(component->origin.v[0], component->origin.v[1], component->origin.v[2] + travel);
    pComponentState->uProperties = properties;
    return true;
}

bool SimRenderModels::RenderModelHasComponent(const char* pchRenderModelName, const char* pchComponentName)
{
    return FindComponent(pchRenderModelName, pchComponentName) != nullptr;
}

namespace {

// The models are built in memory: there is no thumbnail and no file they came from, so a known model
// answers with an empty string.
uint32_t EmptyAnswerForModel(const RenderModelCatalog& catalog, const char* name, char* buffer, uint32_t size,
                             vr::EVRRenderModelError* error)
{
    vr::EVRRenderModelError result = vr::VRRenderModelError_None;
    uint32_t needed = CopyName({}, buffer, size);
    if (name == nullptr || catalog.FindModel(name) == nullptr) {
        result = vr::VRRenderModelError_InvalidModel;
        needed = 0;
    } else if (buffer == nullptr || size < needed) {
        result = vr::VRRenderModelError_BufferTooSmall;
    }
    if (error != nullptr)
        *error = result;
    return needed;
}

}  // namespace

uint32_t SimRenderModels::GetRenderModelThumbnailURL(const char* pchRenderModelName, char* pchThumbnailURL,
                                                     uint32_t unThumbnailURLLen, vr::EVRRenderModelError* peError)
{
    return EmptyAnswerForModel(catalog_, pchRenderModelName, pchThumbnailURL, unThumbnailURLLen, peError);
}

uint32_t SimRenderModels::GetRenderModelOriginalPath(const char* pchRenderModelName, char* pchOriginalPath,
                                                     uint32_t unOriginalPathLen, vr::EVRRenderModelError* peError)
{
    return EmptyAnswerForModel(catalog_, pchRenderModelName, pchOriginalPath, unOriginalPathLen, peError);
}

const char* SimRenderModels::GetRenderModelErrorNameFromEnum(vr::EVRRenderModelError error)
{
    const char* name = NameOf(error);
    return name != nullptr ? name : "Unknown render model error";
}

uint64_t SimRenderModels::OutstandingCount() const
{
    std::lock_guard lock(mutex_);
    return models_out_.size() + textures_out_.size();
}

}  // namespace kesta::vrsim
