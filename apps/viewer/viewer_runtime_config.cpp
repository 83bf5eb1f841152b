#include "apps/viewer/viewer_runtime_config.h"

#include <rapidjson/document.h>
#include <rapidjson/error/en.h>
#include <rapidjson/prettywriter.h>
#include <rapidjson/stringbuffer.h>

#include <fstream>
#include <sstream>

namespace kesta {

namespace {

// Replaces or adds a member (RapidJSON's AddMember would add a second one of the same name).
void SetMember(rapidjson::Value& object, const char* name, rapidjson::Value value,
               rapidjson::Document::AllocatorType& allocator)
{
    if (object.HasMember(name))
        object[name] = std::move(value);
    else
        object.AddMember(rapidjson::StringRef(name), std::move(value), allocator);
}

}  // namespace

bool WriteViewerRuntimeConfig(const std::string& demo_file, const ViewerRuntimeSettings& settings,
                              const std::string& out_file, std::string& error)
{
    std::ifstream in(demo_file);
    if (!in) {
        error = "cannot read the demo configuration " + demo_file;
        return false;
    }
    std::stringstream text;
    text << in.rdbuf();
    const std::string json = text.str();

    rapidjson::Document document;
    document.Parse(json.c_str(), json.size());
    if (document.HasParseError() || !document.IsObject()) {
        error = demo_file + ": " +
                (document.HasParseError() ? std::string(rapidjson::GetParseError_En(document.GetParseError()))
                                          : std::string("not a JSON object"));
        return false;
    }
    auto& allocator = document.GetAllocator();
    SetMember(document, "paced", rapidjson::Value(settings.paced), allocator);

    rapidjson::Value frames(rapidjson::kArrayType);
    frames.PushBack(rapidjson::Value(static_cast<uint64_t>(settings.capture_frame)), allocator);
    rapidjson::Value capture(rapidjson::kObjectType);
    capture.AddMember("png_folder", rapidjson::Value(settings.capture_folder.c_str(), allocator), allocator);
    capture.AddMember("png_frames", std::move(frames), allocator);
    SetMember(document, "capture", std::move(capture), allocator);

    rapidjson::StringBuffer buffer;
    rapidjson::PrettyWriter<rapidjson::StringBuffer> writer(buffer);
    document.Accept(writer);
    std::ofstream out(out_file, std::ios::binary | std::ios::trunc);
    out << buffer.GetString() << '\n';
    out.close();
    if (!out) {
        error = "cannot write " + out_file;
        return false;
    }
    return true;
}

}  // namespace kesta
