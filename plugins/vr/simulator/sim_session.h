#pragma once

#include <memory>

#include "plugins/vr/simulator/sim_compositor.h"
#include "plugins/vr/simulator/sim_render_models.h"
#include "plugins/vr/simulator/sim_runtime.h"
#include "plugins/vr/simulator/sim_system.h"

namespace kesta::vrsim {

// One initialized runtime with its interfaces: made by IVRClientCore::Init, destroyed by Cleanup.
struct SimSession {
    explicit SimSession(SimConfig config)
        : runtime(std::move(config)),
          system(runtime),
          compositor(runtime),
          render_models(runtime.config().render_model_loading_calls)
    {
    }

    SimRuntime runtime;
    SimSystem system;
    SimCompositor compositor;
    SimRenderModels render_models;
};

// The live session, or null. The introspection functions read it; the client core replaces it.
SimSession* CurrentSession();
void SetCurrentSession(std::unique_ptr<SimSession> session);

}  // namespace kesta::vrsim
