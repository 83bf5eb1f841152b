#include "plugins/vr/simulator/sim_config.h"

#include <rapidjson/document.h>
#include <rapidjson/error/en.h>

#include <sys/stat.h>
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <initializer_list>
#include <sstream>

#include "plugins/vr/openvr/openvr_paths.h"
#include "plugins/vr/simulator/render_model_catalog.h"

namespace kesta::vrsim {

bool AnyContains(const std::vector<FrameRange>& ranges, uint64_t frame)
{
    for (const FrameRange& range : ranges) {
        if (range.Contains(frame))
            return true;
    }
    return false;
}

namespace {

using rapidjson::Value;

// Reads typed members of one JSON object and remembers the first problem, with the member's path.
class Reader {
public:
    explicit Reader(std::string& error) : error_(error) {}

    bool ok() const { return error_.empty(); }

    bool Fail(const std::string& path, const std::string& what)
    {
        if (error_.empty())
            error_ = (path.empty() ? std::string("document") : path) + ": " + what;
        return false;
    }

    // Every member must be one of `known`: a misspelt key would otherwise be ignored silently.
    bool Object(const Value& value, const std::string& path, std::initializer_list<const char*> known)
    {
        if (!value.IsObject())
            return Fail(path, "expected an object");
        for (const auto& member : value.GetObject()) {
            bool found = false;
            for (const char* key : known)
                found = found || member.name.GetString() == std::string_view(key);
            if (!found)
                return Fail(Join(path, member.name.GetString()), "unknown member");
        }
        return true;
    }

    void Bool(const Value& object, const std::string& path, const char* key, bool& out)
    {
        if (const Value* v = Find(object, key)) {
            if (v->IsBool())
                out = v->GetBool();
            else
                Fail(Join(path, key), "expected true or false");
        }
    }

    void Number(const Value& object, const std::string& path, const char* key, double& out, double min, double max)
    {
        if (const Value* v = Find(object, key)) {
            if (!v->IsNumber() || v->GetDouble() < min || v->GetDouble() > max)
                Fail(Join(path, key), "expected a number from " + Text(min) + " to " + Text(max));
            else
                out = v->GetDouble();
        }
    }

    void Float(const Value& object, const std::string& path, const char* key, float& out, double min, double max)
    {
        double value = out;
        Number(object, path, key, value, min, max);
        out = static_cast<float>(value);
    }

    void Unsigned(const Value& object, const std::string& path, const char* key, uint32_t& out, uint32_t min,
                  uint32_t max)
    {
        if (const Value* v = Find(object, key)) {
            if (!v->IsUint() || v->GetUint() < min || v->GetUint() > max)
                Fail(Join(path, key), "expected an integer from " + std::to_string(min) + " to " + std::to_string(max));
            else
                out = v->GetUint();
        }
    }

    void String(const Value& object, const std::string& path, const char* key, std::string& out)
    {
        if (const Value* v = Find(object, key)) {
            if (v->IsString())
                out = v->GetString();
            else
                Fail(Join(path, key), "expected a string");
        }
    }

    // One of the render models the runtime has.
    void RenderModel(const Value& object, const std::string& path, const char* key, std::string& out)
    {
        std::string name;
        String(object, path, key, name);
        if (name.empty())
            return;
        if (IsRenderModelName(name)) {
            out = name;
            return;
        }
        std::string known;
        for (std::string_view model : kRenderModelNames)
            known += (known.empty() ? "" : ", ") + std::string(model);
        Fail(Join(path, key), "expected one of " + known);
    }

    void Position(const Value& object, const std::string& path, const char* key, Vec3& out)
    {
        const Value* v = Find(object, key);
        if (v == nullptr)
            return;
        if (!v->IsArray() || v->Size() != 3 || !(*v)[0].IsNumber() || !(*v)[1].IsNumber() || !(*v)[2].IsNumber()) {
            Fail(Join(path, key), "expected [x, y, z] in metres");
            return;
        }
        out = Vec3{(*v)[0].GetDouble(), (*v)[1].GetDouble(), (*v)[2].GetDouble()};
    }

    // A frame number n, or [first, last], or [first] for "from first on".
    bool Range(const Value& v, const std::string& path, FrameRange& out)
    {
        if (v.IsUint64()) {
            out = FrameRange{v.GetUint64(), v.GetUint64()};
            return true;
        }
        if (v.IsArray() && (v.Size() == 1 || v.Size() == 2) && v[0].IsUint64() && (v.Size() == 1 || v[1].IsUint64())) {
            out.first = v[0].GetUint64();
            out.last = v.Size() == 2 ? v[1].GetUint64() : UINT64_MAX;
            if (out.last >= out.first)
                return true;
        }
        return Fail(path, "expected a frame number, [first, last] or [first]");
    }

    void Ranges(const Value& object, const std::string& path, const char* key, std::vector<FrameRange>& out)
    {
        const Value* v = Find(object, key);
        if (v == nullptr)
            return;
        if (!v->IsArray()) {
            Fail(Join(path, key), "expected a list of frame ranges");
            return;
        }
        out.clear();
        for (rapidjson::SizeType i = 0; i < v->Size(); ++i) {
            FrameRange range;
            if (Range((*v)[i], Index(Join(path, key), i), range))
                out.push_back(range);
        }
    }

    const Value* Find(const Value& object, const char* key)
    {
        // Not FindMember: comparing its iterators is ambiguous under C++20's reversed operators.
        return object.HasMember(key) ? &object[key] : nullptr;
    }

    static std::string Join(const std::string& path, const char* key) { return path.empty() ? key : path + "." + key; }
    static std::string Index(const std::string& path, rapidjson::SizeType i)
    {
        return path + "[" + std::to_string(i) + "]";
    }

private:
    static std::string Text(double value)
    {
        std::ostringstream out;
        out << value;
        return out.str();
    }

    std::string& error_;
};

void ReadFov(Reader& r, const Value& object, const std::string& path, EyeFov& fov)
{
    if (!r.Object(object, path, {"left", "right", "up", "down"}))
        return;
    r.Number(object, path, "left", fov.left_degrees, 1.0, 89.0);
    r.Number(object, path, "right", fov.right_degrees, 1.0, 89.0);
    r.Number(object, path, "up", fov.up_degrees, 1.0, 89.0);
    r.Number(object, path, "down", fov.down_degrees, 1.0, 89.0);
}

void ReadHead(Reader& r, const Value& object, const std::string& path, HeadPathConfig& head)
{
    if (!r.Object(object, path,
                  {"path", "position", "yaw_degrees", "pitch_degrees", "radius", "amplitude_degrees", "period_frames",
                   "keyframes"}))
        return;
    std::string kind = "static";
    r.String(object, path, "path", kind);
    if (kind == "static")
        head.kind = HeadPathKind::kStatic;
    else if (kind == "orbit")
        head.kind = HeadPathKind::kOrbit;
    else if (kind == "nod")
        head.kind = HeadPathKind::kNod;
    else if (kind == "keyframes")
        head.kind = HeadPathKind::kKeyframes;
    else
        r.Fail(Reader::Join(path, "path"), "expected static, orbit, nod or keyframes");
    r.Position(object, path, "position", head.position);
    r.Number(object, path, "yaw_degrees", head.yaw_degrees, -360.0, 360.0);
    r.Number(object, path, "pitch_degrees", head.pitch_degrees, -90.0, 90.0);
    r.Number(object, path, "radius", head.radius, 0.0, 100.0);
    r.Number(object, path, "amplitude_degrees", head.amplitude_degrees, 0.0, 90.0);
    r.Number(object, path, "period_frames", head.period_frames, 1.0, 1e9);
    if (const Value* frames = r.Find(object, "keyframes")) {
        const std::string list_path = Reader::Join(path, "keyframes");
        if (!frames->IsArray()) {
            r.Fail(list_path, "expected a list of keyframes");
            return;
        }
        for (rapidjson::SizeType i = 0; i < frames->Size(); ++i) {
            const Value& entry = (*frames)[i];
            const std::string entry_path = Reader::Index(list_path, i);
            if (!r.Object(entry, entry_path, {"frame", "position", "yaw_degrees", "pitch_degrees"}))
                return;
            HeadKeyframe key;
            const Value* frame = r.Find(entry, "frame");
            if (frame == nullptr || !frame->IsUint64()) {
                r.Fail(Reader::Join(entry_path, "frame"), "expected a frame number");
                return;
            }
            key.frame = frame->GetUint64();
            if (!head.keyframes.empty() && key.frame <= head.keyframes.back().frame) {
                r.Fail(Reader::Join(entry_path, "frame"), "keyframes must be in increasing frame order");
                return;
            }
            r.Position(entry, entry_path, "position", key.position);
            r.Number(entry, entry_path, "yaw_degrees", key.yaw_degrees, -360.0, 360.0);
            r.Number(entry, entry_path, "pitch_degrees", key.pitch_degrees, -90.0, 90.0);
            head.keyframes.push_back(key);
        }
    }
    if (head.kind == HeadPathKind::kKeyframes && head.keyframes.empty())
        r.Fail(Reader::Join(path, "keyframes"), "the keyframes path needs at least one keyframe");
}

void ReadDevice(Reader& r, const Value& object, const std::string& path, DeviceConfig& device, size_t number)
{
    if (!r.Object(object, path,
                  {"class", "role", "serial", "model", "render_model", "position", "connected", "invalid_pose",
                   "buttons", "axes"}))
        return;
    std::string kind = "controller";
    r.String(object, path, "class", kind);
    if (kind == "controller")
        device.device_class = vr::TrackedDeviceClass_Controller;
    else if (kind == "tracker")
        device.device_class = vr::TrackedDeviceClass_GenericTracker;
    else if (kind == "tracking_reference")
        device.device_class = vr::TrackedDeviceClass_TrackingReference;
    else
        r.Fail(Reader::Join(path, "class"), "expected controller, tracker or tracking_reference");
    std::string role = "none";
    r.String(object, path, "role", role);
    if (role == "left_hand")
        device.role = vr::TrackedControllerRole_LeftHand;
    else if (role == "right_hand")
        device.role = vr::TrackedControllerRole_RightHand;
    else if (role != "none")
        r.Fail(Reader::Join(path, "role"), "expected left_hand, right_hand or none");
    device.serial = "VRSIM-" + kind + "-" + std::to_string(number);
    device.model = "Norvane Simulated " + kind;
    r.String(object, path, "serial", device.serial);
    r.String(object, path, "model", device.model);
    r.RenderModel(object, path, "render_model", device.render_model);
    r.Position(object, path, "position", device.position);
    r.Ranges(object, path, "connected", device.connected);
    r.Ranges(object, path, "invalid_pose", device.invalid_pose);

    if (const Value* buttons = r.Find(object, "buttons")) {
        const std::string list_path = Reader::Join(path, "buttons");
        for (rapidjson::SizeType i = 0; buttons->IsArray() && i < buttons->Size(); ++i) {
            const Value& entry = (*buttons)[i];
            const std::string entry_path = Reader::Index(list_path, i);
            if (!r.Object(entry, entry_path, {"button", "frames", "touch_only"}))
                return;
            ButtonScript script;
            r.Unsigned(entry, entry_path, "button", script.button, 0, 63);
            r.Bool(entry, entry_path, "touch_only", script.touch_only);
            if (const Value* frames = r.Find(entry, "frames"))
                r.Range(*frames, Reader::Join(entry_path, "frames"), script.frames);
            device.buttons.push_back(script);
        }
        if (!buttons->IsArray())
            r.Fail(list_path, "expected a list");
    }
    if (const Value* axes = r.Find(object, "axes")) {
        const std::string list_path = Reader::Join(path, "axes");
        for (rapidjson::SizeType i = 0; axes->IsArray() && i < axes->Size(); ++i) {
            const Value& entry = (*axes)[i];
            const std::string entry_path = Reader::Index(list_path, i);
            if (!r.Object(entry, entry_path, {"axis", "frames", "x", "y"}))
                return;
            AxisScript script;
            r.Unsigned(entry, entry_path, "axis", script.axis, 0, vr::k_unControllerStateAxisCount - 1);
            r.Float(entry, entry_path, "x", script.x, -1.0, 1.0);
            r.Float(entry, entry_path, "y", script.y, -1.0, 1.0);
            if (const Value* frames = r.Find(entry, "frames"))
                r.Range(*frames, Reader::Join(entry_path, "frames"), script.frames);
            device.axes.push_back(script);
        }
        if (!axes->IsArray())
            r.Fail(list_path, "expected a list");
    }
}

void ReadCapture(Reader& r, const Value& object, const std::string& path, CaptureConfig& capture)
{
    if (!r.Object(object, path, {"readback", "png_folder", "png_frames"}))
        return;
    r.Bool(object, path, "readback", capture.readback);
    r.String(object, path, "png_folder", capture.png_folder);
    if (const Value* frames = r.Find(object, "png_frames")) {
        if (!frames->IsArray()) {
            r.Fail(Reader::Join(path, "png_frames"), "expected a list of frame numbers");
            return;
        }
        for (const auto& frame : frames->GetArray()) {
            if (!frame.IsUint64()) {
                r.Fail(Reader::Join(path, "png_frames"), "expected a list of frame numbers");
                return;
            }
            capture.png_frames.push_back(frame.GetUint64());
        }
    }
    if (!capture.png_frames.empty() && capture.png_folder.empty())
        r.Fail(Reader::Join(path, "png_folder"), "png_frames needs a png_folder");
}

}  // namespace

bool ParseSimConfig(std::string_view json, SimConfig& config, std::string& error)
{
    error.clear();
    rapidjson::Document document;
    // The iterative parser keeps its state on the heap: a deeply nested document cannot exhaust the
    // stack of the thread that loads the runtime.
    document.Parse<rapidjson::kParseIterativeFlag>(json.data(), json.size());
    if (document.HasParseError()) {
        error = "invalid JSON at offset " + std::to_string(document.GetErrorOffset()) + ": " +
                rapidjson::GetParseError_En(document.GetParseError());
        return false;
    }
    SimConfig parsed;
    Reader r(error);
    if (!r.Object(document, "",
                  {"hmd_present", "refresh_rate", "paced", "render_width", "render_height", "ipd_meters", "fov_degrees",
                   "tracking_system_name", "hmd_serial", "hmd_model", "hmd_render_model", "hmd_connected",
                   "hmd_invalid_pose", "head", "devices", "capture", "render_model_loading_calls", "log_limit"}))
        return false;
    r.Bool(document, "", "hmd_present", parsed.hmd_present);
    r.Number(document, "", "refresh_rate", parsed.refresh_rate, 1.0, 1000.0);
    r.Bool(document, "", "paced", parsed.paced);
    r.Unsigned(document, "", "render_width", parsed.render_width, 1, 16384);
    r.Unsigned(document, "", "render_height", parsed.render_height, 1, 16384);
    r.Number(document, "", "ipd_meters", parsed.ipd_meters, 0.0, 0.2);
    if (const Value* fov = r.Find(document, "fov_degrees")) {
        if (r.Object(*fov, "fov_degrees", {"left", "right"})) {
            if (const Value* left = r.Find(*fov, "left"))
                ReadFov(r, *left, "fov_degrees.left", parsed.fov[vr::Eye_Left]);
            if (const Value* right = r.Find(*fov, "right"))
                ReadFov(r, *right, "fov_degrees.right", parsed.fov[vr::Eye_Right]);
        }
    }
    r.String(document, "", "tracking_system_name", parsed.tracking_system_name);
    r.String(document, "", "hmd_serial", parsed.hmd_serial);
    r.String(document, "", "hmd_model", parsed.hmd_model);
    r.RenderModel(document, "", "hmd_render_model", parsed.hmd_render_model);
    r.Ranges(document, "", "hmd_connected", parsed.hmd_connected);
    r.Ranges(document, "", "hmd_invalid_pose", parsed.hmd_invalid_pose);
    if (const Value* head = r.Find(document, "head"))
        ReadHead(r, *head, "head", parsed.head);
    if (const Value* devices = r.Find(document, "devices")) {
        if (!devices->IsArray() || devices->Size() >= vr::k_unMaxTrackedDeviceCount) {
            r.Fail("devices",
                   "expected a list of at most " + std::to_string(vr::k_unMaxTrackedDeviceCount - 1) + " devices");
        } else {
            for (rapidjson::SizeType i = 0; i < devices->Size() && r.ok(); ++i) {
                DeviceConfig device;
                ReadDevice(r, (*devices)[i], Reader::Index("devices", i), device, i);
                parsed.devices.push_back(std::move(device));
            }
        }
    }
    if (const Value* capture = r.Find(document, "capture"))
        ReadCapture(r, *capture, "capture", parsed.capture);
    r.Unsigned(document, "", "render_model_loading_calls", parsed.render_model_loading_calls, 0, 1000);
    r.Unsigned(document, "", "log_limit", parsed.log_limit, 1, 1u << 24);
    if (!r.ok())
        return false;
    config = std::move(parsed);
    return true;
}

std::string FindSimConfigFile()
{
    if (const char* named = std::getenv("NORVANE_VRSIM_CONFIG"); named != nullptr && named[0] != '\0')
        return named;
    OpenVRPaths paths;
    if (FindOpenVRPaths(paths) != vr::VRInitError_None || paths.config.empty())
        return {};
    const std::string candidate = paths.config + "/vrsim.json";
    struct stat info {};
    return stat(candidate.c_str(), &info) == 0 ? candidate : std::string();
}

bool LoadSimConfig(SimConfig& config, std::string& error)
{
    const std::string file = FindSimConfigFile();
    if (file.empty()) {
        config = SimConfig{};
        return true;
    }
    std::ifstream in(file);
    if (!in) {
        error = file + ": cannot be read";
        return false;
    }
    std::stringstream text;
    text << in.rdbuf();
    if (!ParseSimConfig(text.str(), config, error)) {
        error = file + ": " + error;
        return false;
    }
    return true;
}

}  // namespace kesta::vrsim
