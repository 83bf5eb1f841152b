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

bool FirstString(const rapidjson::Value& object, const char* key, std::string& out)
{
    auto it = object.FindMember(key);
    if (it == object.MemberEnd())
        return true;
    if (!it->value.IsArray())
        return false;
    for (const auto& entry : it->value.GetArray()) {
        if (!entry.IsString())
            return false;
    }
    if (!it->value.Empty())
        out = it->value[0].GetString();
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
    document.Parse(json.data(), json.size());
    if (document.HasParseError() || !document.IsObject())
        return false;
    OpenVRPaths parsed;
    if (!FirstString(document, "runtime", parsed.runtime) || !FirstString(document, "config", parsed.config) ||
        !FirstString(document, "log", parsed.log))
        return false;
    auto drivers = document.FindMember("external_drivers");
    if (drivers != document.MemberEnd() && !drivers->value.IsNull()) {
        if (!drivers->value.IsArray())
            return false;
        for (const auto& entry : drivers->value.GetArray()) {
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
