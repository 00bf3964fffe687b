#include "temp_dir.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <system_error>
#include <vector>

namespace VornTestbed {
TempDir::TempDir()
{
    const char *base = std::getenv("TMPDIR");
    std::string pattern = std::string(base != nullptr && *base != '\0' ? base : "/tmp") + "/vorn-testbed-XXXXXX";
    std::vector<char> buffer(pattern.begin(), pattern.end());
    buffer.push_back('\0');
    if (::mkdtemp(buffer.data()) == nullptr) {
        throw std::runtime_error("mkdtemp " + pattern + ": " + std::strerror(errno));
    }
    path_ = buffer.data();
}

TempDir::~TempDir()
{
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

const std::string &TempDir::Path() const
{
    return path_;
}

std::string TempDir::Path(const std::string &relative) const
{
    return path_ + "/" + relative;
}

std::string TempDir::WriteFile(const std::string &relative, const std::string &content) const
{
    std::filesystem::path file = Path(relative);
    std::error_code error;
    std::filesystem::create_directories(file.parent_path(), error);
    std::ofstream out(file, std::ios::binary | std::ios::trunc);
    out.write(content.data(), static_cast<std::streamsize>(content.size()));
    out.close();
    if (error || !out) {
        throw std::runtime_error("cannot write " + file.string());
    }
    return file.string();
}
} // namespace VornTestbed
