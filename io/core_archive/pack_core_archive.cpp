// Build tool: packs the engine's core resources into one ZIP archive, every member deflated, with
// "version.txt" (the project's version) and "sha1.txt" (a hash of the packed sources).
//
// usage: pack_core_archive <output.zip> <version> <source folder> [<member name>=<file> ...]
//
// The archive is reproducible: members are sorted by name and carry a fixed date, so the same
// sources always give the same bytes.

#include <minizip/zip.h>
#include <nettle/sha1.h>
#include <zlib.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <string>
#include <vector>

namespace {

bool read_file(const std::filesystem::path& path, std::string& bytes)
{
    std::ifstream in(path, std::ios::binary);
    if (!in)
        return false;
    bytes.assign(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
    return true;
}

bool add_member(zipFile zip, const std::string& name, const std::string& bytes)
{
    zip_fileinfo info{};
    info.tmz_date.tm_year = 1980;
    info.tmz_date.tm_mday = 1;
    if (zipOpenNewFileInZip(zip, name.c_str(), &info, nullptr, 0, nullptr, 0, nullptr, Z_DEFLATED,
                            Z_BEST_COMPRESSION) != ZIP_OK)
        return false;
    const bool written =
        bytes.empty() || zipWriteInFileInZip(zip, bytes.data(), static_cast<unsigned>(bytes.size())) == ZIP_OK;
    return zipCloseFileInZip(zip) == ZIP_OK && written;
}

std::string sha1_hex(const std::map<std::string, std::string>& members)
{
    sha1_ctx context;
    sha1_init(&context);
    // Names and contents both count: renaming a resource changes the record too.
    for (const auto& [name, bytes] : members) {
        sha1_update(&context, name.size() + 1, reinterpret_cast<const std::uint8_t*>(name.c_str()));
        sha1_update(&context, bytes.size(), reinterpret_cast<const std::uint8_t*>(bytes.data()));
    }
    std::uint8_t digest[SHA1_DIGEST_SIZE];
    sha1_digest(&context, sizeof digest, digest);
    std::string hex;
    char pair[3];
    for (std::uint8_t byte : digest) {
        std::snprintf(pair, sizeof pair, "%02x", byte);
        hex += pair;
    }
    return hex;
}

}  // namespace

int main(int argc, char** argv)
{
    if (argc < 4) {
        std::fprintf(stderr, "usage: %s <output.zip> <version> <source folder> [<member name>=<file> ...]\n", argv[0]);
        return 2;
    }
    const std::filesystem::path output = argv[1];
    const std::string version = argv[2];
    const std::filesystem::path root = argv[3];

    std::map<std::string, std::string> members;
    std::error_code error;
    for (auto it = std::filesystem::recursive_directory_iterator(root, error);
         !error && it != std::filesystem::recursive_directory_iterator(); it.increment(error)) {
        if (!it->is_regular_file())
            continue;
        std::string bytes;
        if (!read_file(it->path(), bytes)) {
            std::fprintf(stderr, "pack_core_archive: cannot read %s\n", it->path().c_str());
            return 1;
        }
        members[std::filesystem::relative(it->path(), root).generic_string()] = std::move(bytes);
    }
    if (error) {
        std::fprintf(stderr, "pack_core_archive: cannot list %s: %s\n", root.c_str(), error.message().c_str());
        return 1;
    }
    for (int i = 4; i < argc; ++i) {
        const std::string mapping = argv[i];
        const std::size_t equals = mapping.find('=');
        std::string bytes;
        if (equals == std::string::npos || !read_file(mapping.substr(equals + 1), bytes)) {
            std::fprintf(stderr, "pack_core_archive: bad or unreadable mapping '%s'\n", mapping.c_str());
            return 1;
        }
        members[mapping.substr(0, equals)] = std::move(bytes);
    }

    const std::string hash = sha1_hex(members);
    members["version.txt"] = version;
    members["sha1.txt"] = hash;

    const std::filesystem::path partial = output.string() + ".partial";
    zipFile zip = zipOpen(partial.c_str(), APPEND_STATUS_CREATE);
    if (!zip) {
        std::fprintf(stderr, "pack_core_archive: cannot create %s\n", partial.c_str());
        return 1;
    }
    bool ok = true;
    for (const auto& [name, bytes] : members)
        ok = ok && add_member(zip, name, bytes);
    ok = zipClose(zip, nullptr) == ZIP_OK && ok;
    if (!ok) {
        std::fprintf(stderr, "pack_core_archive: writing %s failed\n", partial.c_str());
        return 1;
    }
    // Replace the output only once it is complete, so a failed run never leaves half an archive.
    std::filesystem::rename(partial, output, error);
    if (error) {
        std::fprintf(stderr, "pack_core_archive: %s\n", error.message().c_str());
        return 1;
    }
    return 0;
}
