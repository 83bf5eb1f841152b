#pragma once
// A shared library opened with dlopen.

#include "platform/plugin/shared_library.h"

namespace kesta {

class SharedLibPosix final : public SharedLibrary {
public:
    // Takes over a handle that dlopen returned.
    explicit SharedLibPosix(void* handle) : handle_(handle) {}
    ~SharedLibPosix() override;

    void* GetFunctionPointer(const char* name) override;

private:
    void* handle_;
};

}  // namespace kesta
