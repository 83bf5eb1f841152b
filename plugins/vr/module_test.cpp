// The VR module as a host sees it: loaded with dlopen, described, loaded and unloaded.

#include <fcntl.h>
#include <gelf.h>
#include <gtest/gtest.h>
#include <libelf.h>
#include <unistd.h>

#include <set>
#include <string>

#include "overlay/imgui_shared_state.h"
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
