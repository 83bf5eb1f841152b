#include "foundation/crash/callstack.h"

#include <cxxabi.h>
#include <elfutils/libdwfl.h>
#include <execinfo.h>
#include <ucontext.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <mutex>

namespace kesta {

namespace {

constexpr int kMaxFrames = 128;

std::string demangle(const char* name)
{
    int status = 0;
    char* readable = abi::__cxa_demangle(name, nullptr, nullptr, &status);
    if (status != 0 || !readable)
        return name;
    std::string text(readable);
    std::free(readable);
    return text;
}

std::uintptr_t context_program_counter(const void* context)
{
#if defined(__x86_64__)
    return static_cast<std::uintptr_t>(static_cast<const ucontext_t*>(context)->uc_mcontext.gregs[REG_RIP]);
#elif defined(__aarch64__)
    return static_cast<std::uintptr_t>(static_cast<const ucontext_t*>(context)->uc_mcontext.pc);
#else
    (void)context;
    return 0;
#endif
}

// Symbol and line look-up through elfutils, over the modules mapped into this process.
class Symbolizer {
public:
    Symbolizer()
    {
        callbacks_.find_elf = dwfl_linux_proc_find_elf;
        callbacks_.find_debuginfo = dwfl_standard_find_debuginfo;
        dwfl_ = dwfl_begin(&callbacks_);
        if (!dwfl_)
            return;
        dwfl_report_begin(dwfl_);
        if (dwfl_linux_proc_report(dwfl_, getpid()) != 0 || dwfl_report_end(dwfl_, nullptr, nullptr) != 0) {
            dwfl_end(dwfl_);
            dwfl_ = nullptr;
        }
    }
    ~Symbolizer()
    {
        if (dwfl_)
            dwfl_end(dwfl_);
    }
    Symbolizer(const Symbolizer&) = delete;
    Symbolizer& operator=(const Symbolizer&) = delete;

    void Describe(CallstackFrame& frame, Dwarf_Addr lookup) const
    {
        if (!dwfl_)
            return;
        Dwfl_Module* module = dwfl_addrmodule(dwfl_, lookup);
        if (!module)
            return;
        if (const char* module_name =
                dwfl_module_info(module, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr))
            frame.module = module_name;
        if (const char* name = dwfl_module_addrname(module, lookup))
            frame.function = demangle(name);
        if (Dwfl_Line* line = dwfl_module_getsrc(module, lookup)) {
            int line_number = 0;
            if (const char* file = dwfl_lineinfo(line, nullptr, &line_number, nullptr, nullptr, nullptr)) {
                frame.file = file;
                frame.line = line_number;
            }
            return;
        }
        FindLineByUnitRanges(module, lookup, frame);
    }

private:
    // The look-up above relies on an address index (.debug_aranges) that clang does not emit;
    // without it, the compile units are asked one by one whether they cover the address.
    static void FindLineByUnitRanges(Dwfl_Module* module, Dwarf_Addr lookup, CallstackFrame& frame)
    {
        Dwarf_Addr bias = 0;
        for (Dwarf_Die* unit = dwfl_module_nextcu(module, nullptr, &bias); unit;
             unit = dwfl_module_nextcu(module, unit, &bias)) {
            if (dwarf_haspc(unit, lookup - bias) <= 0)
                continue;
            Dwarf_Line* line = dwarf_getsrc_die(unit, lookup - bias);
            int line_number = 0;
            const char* file = line ? dwarf_linesrc(line, nullptr, nullptr) : nullptr;
            if (file && dwarf_lineno(line, &line_number) == 0) {
                frame.file = file;
                frame.line = line_number;
            }
            return;
        }
    }

    Dwfl_Callbacks callbacks_{};
    Dwfl* dwfl_ = nullptr;
};

}  // namespace

[[gnu::noinline]] void GetCallstack(std::vector<CallstackFrame>& frames, int skip, const void* context)
{
    frames.clear();
    void* addresses[kMaxFrames];
    const int count = backtrace(addresses, kMaxFrames);

    // The module list is read afresh each time: libraries may have been loaded since the last call.
    static std::mutex symbolizer_lock;
    std::lock_guard lock(symbolizer_lock);
    const Symbolizer symbolizer;

    if (context) {
        CallstackFrame frame;
        frame.address = context_program_counter(context);
        symbolizer.Describe(frame, frame.address);
        frames.push_back(std::move(frame));
    }
    // The caller's frame is the one that returns to where this function was called from; frames
    // before it belong to this function and to whatever intercepts backtrace() (sanitizers do).
    int first = 1;
    const void* return_address = __builtin_return_address(0);
    for (int i = 0; i < count; ++i) {
        if (addresses[i] == return_address) {
            first = i;
            break;
        }
    }
    for (int i = first + (skip > 0 ? skip : 0); i < count; ++i) {
        CallstackFrame frame;
        frame.address = reinterpret_cast<std::uintptr_t>(addresses[i]);
        // A return address points behind the call; one byte back lies inside the calling line.
        symbolizer.Describe(frame, frame.address - 1);
        frames.push_back(std::move(frame));
    }
}

std::string CallstackToString(const std::vector<CallstackFrame>& frames)
{
    std::string text;
    for (std::size_t i = 0; i < frames.size(); ++i) {
        const CallstackFrame& frame = frames[i];
        char head[64];
        std::snprintf(head, sizeof head, "  #%zu 0x%016zx ", i, static_cast<std::size_t>(frame.address));
        text += head;
        text += frame.function.empty() ? "??" : frame.function;
        if (!frame.file.empty()) {
            text += " at ";
            text += frame.file;
            text += ':';
            text += std::to_string(frame.line);
        }
        if (!frame.module.empty()) {
            text += " [";
            text += frame.module;
            text += ']';
        }
        text += '\n';
    }
    return text;
}

}  // namespace kesta
