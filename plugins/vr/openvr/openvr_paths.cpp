#include "plugins/vr/openvr/openvr_paths.h"

#include <rapidjson/document.h>

#include <cstdlib>
#include <fstream>
#include <sstream>

namespace kesta {

namespace {

const char* NonEmptyEnv(const char* name)
{
    const char* value = std::getenv(name);
    return (value != nullptr && value[0] != '\0') ? value : nullptr;
}

// Null when the object has no such member. (Comparing RapidJSON's member iterators is ambiguous
// under C++20's reversed operators, so lookups go through HasMember.)
const rapidjson::Value* Member(const rapidjson::Value& object, const char* key)
{
    return object.HasMember(key) ? &object[key] : nullptr;
}

bool FirstString(const rapidjson::Value& object, const char* key, std::string& out)
{
    const rapidjson::Value* list = Member(object, key);
    if (list == nullptr)
        return true;
    if (!list->IsArray())
        return false;
    for (const auto& entry : list->GetArray()) {
        if (!entry.IsString())
            return false;
    }
    if (!list->Empty())
        out = (*list)[0].GetString();
    return true;
}

}  // namespace

std::string OpenVRPathsFile()
{
    if (const char* xdg = NonEmptyEnv("XDG_CONFIG_HOME"))
        return std::string(xdg) + "/openvr/openvrpaths.vrpath";
    if (const char* home = NonEmptyEnv("HOME"))
        return std::string(home) + "/.config/openvr/openvrpaths.vrpath";
    return {};
}

bool ParseOpenVRPaths(std::string_view json, OpenVRPaths& paths)
{
    rapidjson::Document document;
    // Iterative: a deeply nested file cannot exhaust the application's stack.
    document.Parse<rapidjson::kParseIterativeFlag>(json.data(), json.size());
    if (document.HasParseError() || !document.IsObject())
        return false;
    OpenVRPaths parsed;
    if (!FirstString(document, "runtime", parsed.runtime) || !FirstString(document, "config", parsed.config) ||
        !FirstString(document, "log", parsed.log))
        return false;
    const rapidjson::Value* drivers = Member(document, "external_drivers");
    if (drivers != nullptr && !drivers->IsNull()) {
        if (!drivers->IsArray())
            return false;
        for (const auto& entry : drivers->GetArray()) {
            if (!entry.IsString())
                return false;
            parsed.external_drivers.emplace_back(entry.GetString());
        }
    }
    paths = std::move(parsed);
    return true;
}

vr::EVRInitError FindOpenVRPaths(OpenVRPaths& paths)
{
    const char* runtime_override = NonEmptyEnv("VR_OVERRIDE");
    const char* config_override = NonEmptyEnv("VR_CONFIG_PATH");
    const char* log_override = NonEmptyEnv("VR_LOG_PATH");

    OpenVRPaths found;
    if (!(runtime_override && config_override && log_override)) {
        const std::string file = OpenVRPathsFile();
        std::ifstream in(file);
        if (!file.empty() && in) {
            std::stringstream text;
            text << in.rdbuf();
            // An unreadable registry counts as none; the variables may still name everything needed.
            if (!ParseOpenVRPaths(text.str(), found))
                found = OpenVRPaths{};
        }
    }
    if (runtime_override)
        found.runtime = runtime_override;
    if (config_override)
        found.config = config_override;
    if (log_override)
        found.log = log_override;
    if (found.runtime.empty())
        return vr::VRInitError_Init_PathRegistryNotFound;
    paths = std::move(found);
    return vr::VRInitError_None;
}

}  // namespace kesta
