#pragma once
// What a renderer test needs around it: a filesystem with a writable memory folder on "@test/",
// the GPU resource registry, a captured log, and a recording renderer made the way a factory
// makes one. Everything is installed in the engine globals for the length of the test and the
// previous values come back afterwards.

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <string_view>

#include "engine/renderer/gpu_resource_registry.h"
#include "engine/renderer/recording_renderer.h"
#include "io/filesystem.h"
#include "io/testing/log_capture.h"

namespace kesta::testing {

class RendererTestEnvironment {
public:
    RendererTestEnvironment();
    ~RendererTestEnvironment();
    RendererTestEnvironment(const RendererTestEnvironment&) = delete;
    RendererTestEnvironment& operator=(const RendererTestEnvironment&) = delete;

    // Writes (or replaces) a file in the memory folder; the path is "@test/<name>".
    std::string WriteFile(std::string_view name, std::string_view content);
    // Log lines other than the filesystem's own debug lines.
    std::vector<std::string> NonDebugLines() const;

    Filesystem filesystem;
    GpuResourceRegistry registry;
    LogCapture log;
    std::shared_ptr<RecordingRenderer> renderer;

private:
    Filesystem* previous_filesystem_;
    GpuResourceRegistry* previous_registry_;
};

// A test whose renderer is open, with the calls and log lines of opening cleared.
class OpenRendererTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        renderer.Open();
        renderer.ClearCalls();
        env.log.Clear();
    }

    RendererTestEnvironment env;
    RecordingRenderer& renderer = *env.renderer;
};

}  // namespace kesta::testing
