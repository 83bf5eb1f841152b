#include "engine/renderer/testing/renderer_test_environment.h"

#include "io/memory_file_driver.h"

namespace kesta::testing {

RendererTestEnvironment::RendererTestEnvironment()
    : previous_filesystem_(g_filesystem), previous_registry_(g_gpu_resource_registry)
{
    g_filesystem = &filesystem;
    g_gpu_resource_registry = &registry;
    filesystem.Mount(std::make_shared<MemoryFileDriver>(), "@test/");
    renderer = std::static_pointer_cast<RecordingRenderer>(AdoptRenderer(std::make_shared<RecordingRenderer>()));
}

RendererTestEnvironment::~RendererTestEnvironment()
{
    renderer->Close();
    renderer.reset();
    g_filesystem = previous_filesystem_;
    g_gpu_resource_registry = previous_registry_;
}

std::string RendererTestEnvironment::WriteFile(std::string_view name, std::string_view content)
{
    const std::string path = "@test/" + std::string(name);
    // Memory files keep their old bytes when written again: replace, don't overwrite.
    filesystem.Delete(path);
    filesystem.DataToFile(path, content.data(), content.size());
    return path;
}

std::vector<std::string> RendererTestEnvironment::NonDebugLines() const
{
    std::vector<std::string> lines;
    for (const std::string& line : log.Lines())
        if (line.rfind("debug: ", 0) != 0)
            lines.push_back(line);
    return lines;
}

}  // namespace kesta::testing
