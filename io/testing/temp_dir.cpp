#include "io/testing/temp_dir.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <sstream>

namespace kesta::testing {

TempDir::TempDir()
{
    std::string pattern = (std::filesystem::temp_directory_path() / "norvane_io_XXXXXX").string();
    if (::mkdtemp(pattern.data()) == nullptr)
        ADD_FAILURE() << "cannot make a temporary folder";
    path_ = pattern;
}

TempDir::~TempDir()
{
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

void TempDir::Write(std::string_view name, std::string_view content) const
{
    std::filesystem::create_directories(std::filesystem::path(File(name)).parent_path());
    std::ofstream out(File(name), std::ios::binary);
    out.write(content.data(), static_cast<std::streamsize>(content.size()));
}

std::string TempDir::Read(std::string_view name) const
{
    std::ifstream in(File(name), std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

}  // namespace kesta::testing
