// The cost of one profile section: BeginSection and EndSection, with a frame end every 256 pairs.

#include <benchmark/benchmark.h>

#include "foundation/profiler/profiler.h"

namespace {

void BM_ProfilerSectionPair(benchmark::State& state)
{
    kesta::Profiler profiler;
    const char* names[] = {"RenderSystem.DrawRenderables", "Scene.Update.UpdateSystems",
                           "OpenVRFrameRenderer.RenderFrame.RenderLeftEye", "TransformSystem.Update"};
    std::size_t count = 0;
    for (auto _ : state) {
        profiler.EndSection(profiler.BeginSection(names[count & 3]));
        if ((++count & 255) == 0)
            profiler.EndFrame();
    }
}
BENCHMARK(BM_ProfilerSectionPair);

}  // namespace

BENCHMARK_MAIN();
