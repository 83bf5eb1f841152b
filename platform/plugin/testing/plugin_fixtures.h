#pragma once
// The fixture plug-ins that the test tree builds, and a temporary folder to scan that holds copies of
// the chosen ones. Each fixture notes in the environment when it is mapped and released.

#include <string>
#include <string_view>

#include "io/testing/temp_dir.h"

namespace kesta::testing {

// The folder where the test tree builds the fixtures, e.g. "good.so", "no_load.so".
std::string FixturePath(std::string_view variant);

// What the fixtures noted since the last reset: "<file> mapped;" and "<file> released;" in the
// order it happened.
std::string FixtureTrace();
void ResetFixtureTrace();

// Whether a library of this exact path is mapped into the process now.
bool IsMapped(const std::string& path);

class FixtureFolder {
public:
    FixtureFolder() = default;

    // Copies the fixture `variant` into the folder as `file_name`, by default "<variant>.so". A
    // copy is a file of its own, so the loader maps it as a library of its own.
    void Add(std::string_view variant, std::string file_name = {});
    // A file that is not a library.
    void AddFile(std::string_view file_name, std::string_view content) const { dir_.Write(file_name, content); }

    const std::string& path() const { return dir_.path(); }
    std::string File(std::string_view file_name) const { return dir_.File(file_name); }

private:
    TempDir dir_;
};

}  // namespace kesta::testing
