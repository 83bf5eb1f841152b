// The exported introspection functions (see exports.map): thin readers of the current session.
#include "plugins/vr/simulator/vrsim_api.h"

#include "plugins/vr/simulator/sim_session.h"

using kesta::vrsim::CurrentSession;

extern "C" {

uint64_t VrSimFrameCount(void)
{
    const auto* session = CurrentSession();
    return session != nullptr ? session->runtime.frame() : 0;
}

uint64_t VrSimSubmissionCount(void)
{
    const auto* session = CurrentSession();
    return session != nullptr ? session->runtime.SubmissionCount() : 0;
}

int VrSimGetSubmission(uint64_t index, struct VrSimSubmission* out)
{
    const auto* session = CurrentSession();
    return session != nullptr && out != nullptr && session->runtime.GetSubmission(index, *out) ? 1 : 0;
}

uint64_t VrSimHapticPulseCount(void)
{
    const auto* session = CurrentSession();
    return session != nullptr ? session->runtime.HapticPulseCount() : 0;
}

int VrSimGetHapticPulse(uint64_t index, struct VrSimHapticPulse* out)
{
    const auto* session = CurrentSession();
    return session != nullptr && out != nullptr && session->runtime.GetHapticPulse(index, *out) ? 1 : 0;
}

uint64_t VrSimCopyLastPixels(uint32_t eye, void* buffer, uint64_t capacity, uint32_t* width, uint32_t* height)
{
    const auto* session = CurrentSession();
    if (session == nullptr || eye > vr::Eye_Right) {
        if (width != nullptr)
            *width = 0;
        if (height != nullptr)
            *height = 0;
        return 0;
    }
    return session->runtime.CopyPicture(static_cast<vr::EVREye>(eye), buffer, capacity, width, height);
}

void VrSimClearLogs(void)
{
    if (auto* session = CurrentSession())
        session->runtime.ClearLogs();
}

uint64_t VrSimRenderModelsOutstanding(void)
{
    const auto* session = CurrentSession();
    return session != nullptr ? session->render_models.OutstandingCount() : 0;
}

}  // extern "C"
