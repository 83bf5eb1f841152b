#include "foundation/assert/assertion.h"

#include <cstdio>
#include <cstdlib>
#include <vector>

#include "foundation/assert/qualified_function_name.h"
#include "foundation/crash/callstack.h"
#include "foundation/log/log.h"

namespace kesta {

AssertionHandler g_assertion_handler = nullptr;

void DefaultAssertionHandler(const char*, int, const char*, const char*, const char*) { std::abort(); }

std::string MakeAssertionText(const char* file, int line, const char* function, const char* condition,
                              const char* detail)
{
    std::string text = "ASSERT(";
    text += condition ? condition : "";
    text += ") failed!\n\nFile: ";
    text += file ? file : "";
    text += "\nLine ";
    text += std::to_string(line);
    text += " in function '";
    text += function ? function : "";
    text += "'\n";
    if (detail) {
        text += "\nDetail: ";
        text += detail;
        text += '\n';
    }
    return text;
}

void assertion_failed(const char* file, int line, const char* pretty_function, const char* condition,
                      const char* detail)
{
    const std::string qualified = QualifiedFunctionName(pretty_function ? pretty_function : "");
    const char* function = qualified.c_str();
    std::string text = MakeAssertionText(file, line, function, condition, detail);
    std::vector<CallstackFrame> frames;
    GetCallstack(frames, 1);
    text += "\nCallstack:\n";
    text += CallstackToString(frames);

    std::string report = "Assertion failed\n\n";
    report += text;
    std::fwrite(report.data(), 1, report.size(), stderr);
    std::fflush(stderr);
    error(text);

    const AssertionHandler handler = g_assertion_handler ? g_assertion_handler : &DefaultAssertionHandler;
    handler(file, line, function, condition, detail);
}

}  // namespace kesta
