#pragma once
// A fresh folder under the system's temporary folder, removed with everything in it at the end of
// the test.

#include <string>
#include <string_view>

namespace kesta::testing {

class TempDir {
public:
    TempDir();
    ~TempDir();
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;

    const std::string& path() const { return path_; }
    std::string File(std::string_view name) const { return path_ + "/" + std::string(name); }
    void Write(std::string_view name, std::string_view content) const;
    std::string Read(std::string_view name) const;

private:
    std::string path_;
};

}  // namespace kesta::testing
