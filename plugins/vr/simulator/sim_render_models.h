#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <string>

#include "plugins/vr/openvr/openvr.h"
#include "plugins/vr/simulator/render_model_catalog.h"

namespace kesta::vrsim {

// IVRRenderModels_005 of the simulated runtime. Models and textures come from the catalog; each name
// or texture id answers VRRenderModelError_Loading for its first `loading_calls` requests, as a real
// runtime does while it reads the files, so that applications' polling loops run. Every successful
// load hands out a fresh copy that only the matching Free call releases; what is still out when the
// session ends is released with it. Safe to call from several threads.
class SimRenderModels final : public vr::IVRRenderModels {
public:
    explicit SimRenderModels(uint32_t loading_calls) : loading_calls_(loading_calls) {}

    vr::EVRRenderModelError LoadRenderModel_Async(const char* pchRenderModelName,
                                                  vr::RenderModel_t** ppRenderModel) override;
    void FreeRenderModel(vr::RenderModel_t* pRenderModel) override;
    vr::EVRRenderModelError LoadTexture_Async(vr::TextureID_t textureId,
                                              vr::RenderModel_TextureMap_t** ppTexture) override;
    void FreeTexture(vr::RenderModel_TextureMap_t* pTexture) override;
    vr::EVRRenderModelError LoadTextureD3D11_Async(vr::TextureID_t textureId, void* pD3D11Device,
                                                   void** ppD3D11Texture2D) override;
    vr::EVRRenderModelError LoadIntoTextureD3D11_Async(vr::TextureID_t textureId, void* pDstTexture) override;
    void FreeTextureD3D11(void* pD3D11Texture2D) override;
    uint32_t GetRenderModelName(uint32_t unRenderModelIndex, char* pchRenderModelName,
                                uint32_t unRenderModelNameLen) override;
    uint32_t GetRenderModelCount() override;
    uint32_t GetComponentCount(const char* pchRenderModelName) override;
    uint32_t GetComponentName(const char* pchRenderModelName, uint32_t unComponentIndex, char* pchComponentName,
                              uint32_t unComponentNameLen) override;
    uint64_t GetComponentButtonMask(const char* pchRenderModelName, const char* pchComponentName) override;
    uint32_t GetComponentRenderModelName(const char* pchRenderModelName, const char* pchComponentName,
                                         char* pchComponentRenderModelName,
                                         uint32_t unComponentRenderModelNameLen) override;
    bool GetComponentState(const char* pchRenderModelName, const char* pchComponentName,
                           const vr::VRControllerState_t* pControllerState,
                           const vr::RenderModel_ControllerMode_State_t* pState,
                           vr::RenderModel_ComponentState_t* pComponentState) override;
    bool RenderModelHasComponent(const char* pchRenderModelName, const char* pchComponentName) override;
    uint32_t GetRenderModelThumbnailURL(const char* pchRenderModelName, char* pchThumbnailURL,
                                        uint32_t unThumbnailURLLen, vr::EVRRenderModelError* peError) override;
    uint32_t GetRenderModelOriginalPath(const char* pchRenderModelName, char* pchOriginalPath,
                                        uint32_t unOriginalPathLen, vr::EVRRenderModelError* peError) override;
    const char* GetRenderModelErrorNameFromEnum(vr::EVRRenderModelError error) override;

    // Models and textures handed out and not yet freed.
    uint64_t OutstandingCount() const;

private:
    struct ModelCopy {
        vr::RenderModel_t header{};
        std::vector<vr::RenderModel_Vertex_t> vertices;
        std::vector<uint16_t> indices;
    };
    struct TextureCopy {
        vr::RenderModel_TextureMap_t header{};
        std::vector<uint8_t> rgba;
    };

    // True once the key has been asked for more than loading_calls_ times; counts this request.
    bool Ready(std::map<std::string, uint32_t>& requests, const std::string& key);
    const ModelComponent* FindComponent(const char* model_name, const char* component_name) const;

    const RenderModelCatalog catalog_;
    const uint32_t loading_calls_;

    mutable std::mutex mutex_;
    std::map<std::string, uint32_t> model_requests_;
    std::map<std::string, uint32_t> texture_requests_;
    std::map<const vr::RenderModel_t*, std::unique_ptr<ModelCopy>> models_out_;
    std::map<const vr::RenderModel_TextureMap_t*, std::unique_ptr<TextureCopy>> textures_out_;
};

}  // namespace kesta::vrsim
