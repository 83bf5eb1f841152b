#include "platform/plugin/testing/plugin_fixtures.h"

#include <gtest/gtest.h>
#include <link.h>
#include <stdlib.h>

#include <cstring>
#include <filesystem>

namespace kesta::testing {

namespace {

constexpr const char* kTraceVariable = "NORVANE_FIXTURE_TRACE";

int find_mapped(dl_phdr_info* info, std::size_t, void* wanted)
{
    return info->dlpi_name && std::strcmp(info->dlpi_name, static_cast<const std::string*>(wanted)->c_str()) == 0;
}

}  // namespace

std::string FixturePath(std::string_view variant)
{
    return std::string(NORVANE_PLUGIN_FIXTURE_DIR) + "/" + std::string(variant) + ".so";
}

std::string FixtureTrace()
{
    const char* trace = std::getenv(kTraceVariable);
    return trace ? trace : "";
}

void ResetFixtureTrace() { ::unsetenv(kTraceVariable); }

bool IsMapped(const std::string& path) { return dl_iterate_phdr(&find_mapped, const_cast<std::string*>(&path)) != 0; }

void FixtureFolder::Add(std::string_view variant, std::string file_name)
{
    if (file_name.empty())
        file_name = std::string(variant) + ".so";
    std::error_code failed;
    std::filesystem::copy_file(FixturePath(variant), dir_.File(file_name), failed);
    if (failed)
        ADD_FAILURE() << "cannot copy the fixture " << variant << ": " << failed.message();
}

}  // namespace kesta::testing
