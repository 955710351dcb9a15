#pragma once
// A fresh directory under the system temp dir, removed with everything in it.

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>

namespace mw::testing {

class TempDir {
public:
    TempDir() {
        std::string pattern = (std::filesystem::temp_directory_path() / "mw-test-XXXXXX").string();
        path_ = ::mkdtemp(pattern.data());
    }
    ~TempDir() {
        std::error_code ec;
        std::filesystem::remove_all(path_, ec);
    }
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;

    const std::filesystem::path& path() const { return path_; }
    std::filesystem::path operator/(std::string_view name) const { return path_ / name; }

    void write(std::string_view name, std::string_view bytes) const {
        std::ofstream(path_ / name, std::ios::binary) << bytes;
    }

private:
    std::filesystem::path path_;
};

inline std::string readFile(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

}  // namespace mw::testing
