#pragma once
// Real ZIP archives for tests, written with minizip's zip API.

#include <cstdint>
#include <string>
#include <vector>

namespace kesta::testing {

struct ZipMember {
    std::string name;
    std::string content;
    bool deflated = true;
    std::string password;  // encrypts the member when not empty
};

std::vector<std::uint8_t> MakeZipArchive(const std::vector<ZipMember>& members);

// Text that deflates well but not trivially, so that compressed and stored members differ.
std::string MakeSampleText(std::size_t size, unsigned seed = 1);

}  // namespace kesta::testing
