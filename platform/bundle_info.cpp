#include "platform/bundle_info.hpp"

#include <dlfcn.h>

#include <filesystem>
#include <system_error>

#ifndef MW_PROJECT_VERSION
#define MW_PROJECT_VERSION "unknown"
#endif

namespace mw {

const char* projectVersion() { return MW_PROJECT_VERSION; }

BundleInfo bundleInfoContaining(const void* address) {
    BundleInfo info{std::string(MW_PROJECT_VERSION), {}};
    Dl_info dl{};
    if (dladdr(address, &dl) != 0 && dl.dli_fname != nullptr && *dl.dli_fname != '\0') {
        std::error_code ec;
        auto file = std::filesystem::canonical(dl.dli_fname, ec);
        if (ec) file = std::filesystem::absolute(dl.dli_fname, ec);
        info.path = file.parent_path().string();
    }
    if (info.path.empty()) {
        std::error_code ec;
        const auto self = std::filesystem::read_symlink("/proc/self/exe", ec);
        if (!ec) info.path = self.parent_path().string();
    }
    return info;
}

}  // namespace mw
