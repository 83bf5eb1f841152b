// The VR module as a host sees it: loaded with dlopen, described, loaded and unloaded.

#include <fcntl.h>
#include <gelf.h>
#include <gtest/gtest.h>
#include <libelf.h>
#include <unistd.h>

#include <algorithm>
#include <iterator>
#include <set>
#include <string>
#include <typeinfo>
#include <vector>

#include "engine/frame_renderer_factory.h"
#include "overlay/imgui_shared_state.h"
#include "platform/input/input_device.h"
#include "platform/input/input_system.h"
#include "platform/plugin/plugin_library.h"
#include "plugins/engine_singletons.h"
#include "plugins/plugin_context.h"

namespace kesta {
namespace {

void expect_module_description(const PluginDescription& d)
{
    EXPECT_EQ(d.api_version, 1);
    EXPECT_STREQ(d.name, "OpenVR");
    EXPECT_STREQ(d.version, "0.9.2");
    EXPECT_STREQ(d.description, "OpenVR frame renderer");
    EXPECT_EQ(d.host_version, 1);
#if defined(__clang__)
    EXPECT_STREQ(d.toolchain, "Clang");
#else
    EXPECT_STREQ(d.toolchain, "GCC");
#endif
    EXPECT_EQ(d.build_flags & 0xff & 2, 2);
}

class VRModule : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(library.Open(NORVANE_VR_MODULE_PATH)) << library.error(); }

    EngineSingletons singletons;
    PluginLibrary library;
};

TEST_F(VRModule, DescribesItselfBeforeAndAfterLoadAndTouchesNoHostObject)
{
    expect_module_description(library.get_description());
    EXPECT_EQ(singletons.imgui_shared_state().context_changed.SlotCount(), 0u);

    ASSERT_EQ(library.load(MakePluginContext()), 0);
    expect_module_description(library.get_description());
    library.unload();
}

TEST_F(VRModule, AdoptsTheHostsObjectsOnLoadAndLetsGoOnUnload)
{
    ImGuiSharedState& shared = singletons.imgui_shared_state();
    ASSERT_EQ(shared.context_changed.SlotCount(), 0u);

    // The module's code connects to the host's object, which it can only reach through the
    // context: its own globals were null until now.
    ASSERT_EQ(library.load(MakePluginContext()), 0);
    EXPECT_EQ(shared.context_changed.SlotCount(), 1u);
    // The slot is the module's: it runs the module's own ImGui, without touching the host's.
    shared.context_changed.Emit(nullptr);

    library.unload();
    EXPECT_EQ(shared.context_changed.SlotCount(), 0u);
    library.Close();
    // With the library gone nothing of its code may remain reachable from the host.
    shared.context_changed.Emit(nullptr);
}

TEST_F(VRModule, AdoptsWhicheverContextItIsGiven)
{
    // A context whose ImGui state is another object: the module must follow the pointer it is
    // given, not the host's globals of this process.
    ImGuiSharedState other;
    PluginContext context = MakePluginContext();
    context.imgui_shared_state = &other;
    ASSERT_EQ(library.load(context), 0);
    EXPECT_EQ(other.context_changed.SlotCount(), 1u);
    EXPECT_EQ(singletons.imgui_shared_state().context_changed.SlotCount(), 0u);
    library.unload();
    EXPECT_EQ(other.context_changed.SlotCount(), 0u);
}

const std::vector<std::string> kDeviceNames = {"HMD", "VR Controller 0", "VR Controller 1", "VR Tracker 0",
                                               "VR Tracker 1"};

std::vector<std::string> FactoryNames(const FrameRendererFactory& factory)
{
    std::vector<std::string> names;
    for (const auto& [name, make] : factory)
        names.push_back(name);
    return names;
}

// A frame renderer of another plug-in, which the VR module must leave alone.
class OtherFrameRenderer : public FrameRenderer {
public:
    bool Initialize(RenderSystem&) override { return true; }
    void RenderFrame(RenderSystem&, LightSystem&, std::vector<std::shared_ptr<Renderable>>&,
                     std::vector<std::shared_ptr<Component>>&) override
    {
    }
    void Shutdown(RenderSystem&) override {}
};

// A device of another plug-in, which the VR module must leave alone.
class OtherDevice : public InputDevice {
public:
    InputDeviceKind GetType() override { return kInputDeviceKeyboard; }
    void Update() override {}
};

// The host's input system only lists names here: GetDevice would keep the module's devices in the
// system beyond the unload, and their code goes with the library.
TEST_F(VRModule, RegistersFiveDevicesAndTwoFrameRendererNamesUntilUnload)
{
    InputSystem& input = singletons.input_system();
    FrameRendererFactory& factory = singletons.frame_renderer_factory();
    input.AddDevice("keyboard", std::make_shared<OtherDevice>());
    factory["Default"] = [] { return std::make_shared<OtherFrameRenderer>(); };

    for (int round = 0; round < 2; ++round) {
        SCOPED_TRACE(round);
        ASSERT_EQ(library.load(MakePluginContext()), 0);
        std::vector<std::string> expected = kDeviceNames;
        expected.push_back("keyboard");
        EXPECT_EQ(input.GetDeviceNames(), expected);
        EXPECT_EQ(FactoryNames(factory), (std::vector<std::string>{"Default", "OpenVR", "VR"}));
        {
            // Both names make distinct instances of the same renderer, with the left eye on the
            // window. Instances hold the module's code: they go before the unload.
            const std::shared_ptr<FrameRenderer> vr = factory.at("VR")();
            const std::shared_ptr<FrameRenderer> openvr = factory.at("OpenVR")();
            ASSERT_TRUE(vr && openvr);
            EXPECT_NE(vr, openvr);
            EXPECT_EQ(vr->GetConfiguration("MonitoringConfiguration"), "2");
            EXPECT_EQ(openvr->GetConfiguration("MonitoringConfiguration"), "2");
            const FrameRenderer& vr_instance = *vr;
            const FrameRenderer& openvr_instance = *openvr;
            EXPECT_EQ(typeid(vr_instance), typeid(openvr_instance));
            EXPECT_NE(typeid(vr_instance), typeid(OtherFrameRenderer));
        }
        library.unload();
        EXPECT_EQ(input.GetDeviceNames(), (std::vector<std::string>{"keyboard"}));
        EXPECT_EQ(FactoryNames(factory), (std::vector<std::string>{"Default"}));
    }
}

TEST_F(VRModule, DevicesAreTheHeadsetControllersAndTrackersAndANameClashKeepsTheFirst)
{
    // An input system that goes before the library does, so the devices may be fetched.
    InputSystem input;
    const auto earlier = std::make_shared<OtherDevice>();
    input.AddDevice("VR Tracker 1", earlier);
    PluginContext context = MakePluginContext();
    context.input_system = &input;
    ASSERT_EQ(library.load(context), 0);
    EXPECT_EQ(input.GetDeviceNames(), kDeviceNames);
    EXPECT_EQ(input.GetDevice("HMD")->GetType(), kInputDeviceHeadMountedDisplay);
    for (const char* name : {"VR Controller 0", "VR Controller 1", "VR Tracker 0"})
        EXPECT_EQ(input.GetDevice(name)->GetType(), kInputDeviceTrackedController) << name;
    EXPECT_EQ(input.GetDevice("VR Tracker 1"), earlier);
    // Before any frame: the head at the identity, the controllers at zero.
    Matrix4 zero;
    std::fill(std::begin(zero.m), std::end(zero.m), 0.0f);
    EXPECT_EQ(input.GetDevice("HMD")->GetMatrix(0), Matrix4::Identity());
    EXPECT_EQ(input.GetDevice("VR Controller 1")->GetMatrix(0), zero);
    library.unload();
    EXPECT_TRUE(input.GetDeviceNames().empty());
}

// The names of the symbols that a shared object defines in its dynamic symbol table.
std::set<std::string> defined_dynamic_symbols(const char* path)
{
    std::set<std::string> names;
    elf_version(EV_CURRENT);
    const int fd = open(path, O_RDONLY);
    if (fd < 0)
        return names;
    Elf* elf = elf_begin(fd, ELF_C_READ, nullptr);
    for (Elf_Scn* section = nullptr; elf && (section = elf_nextscn(elf, section));) {
        GElf_Shdr header;
        if (!gelf_getshdr(section, &header) || header.sh_type != SHT_DYNSYM)
            continue;
        Elf_Data* data = elf_getdata(section, nullptr);
        const std::size_t count = header.sh_entsize ? header.sh_size / header.sh_entsize : 0;
        for (std::size_t i = 0; data && i < count; ++i) {
            GElf_Sym symbol;
            if (!gelf_getsym(data, static_cast<int>(i), &symbol) || symbol.st_shndx == SHN_UNDEF)
                continue;
            const int binding = GELF_ST_BIND(symbol.st_info);
            if (binding != STB_GLOBAL && binding != STB_WEAK)
                continue;
            names.insert(elf_strptr(elf, header.sh_link, symbol.st_name));
        }
    }
    if (elf)
        elf_end(elf);
    close(fd);
    return names;
}

TEST(VRModuleExports, OnlyTheThreeEntryPointsAreExported)
{
    EXPECT_EQ(defined_dynamic_symbols(NORVANE_VR_MODULE_PATH),
              (std::set<std::string>{"PluginGetDescription", "PluginLoad", "PluginUnload"}));
}

TEST(VRModuleExports, LibraryWithoutEntryPointsIsRefused)
{
    PluginLibrary library;
    // The C library is a real shared object without plug-in entry points.
    EXPECT_FALSE(library.Open("libc.so.6"));
    EXPECT_FALSE(library.IsOpen());
    EXPECT_NE(library.error().find("missing entry point"), std::string::npos);
    EXPECT_FALSE(library.Open("/nonexistent/plugin.so"));
    EXPECT_FALSE(library.error().empty());
}

}  // namespace
}  // namespace kesta
