#pragma once
#include <optional>
#include <string>

namespace mw {

// What stands for the extension's bundle: the version compiled in and the
// directory of the binary that holds the code.
struct BundleInfo {
    std::optional<std::string> version;  // nothing: reported as "unknown"
    std::string path;
    bool operator==(const BundleInfo&) const = default;
};

// Version of this build.
const char* projectVersion();

// The bundle of the binary (executable or shared library) that contains
// `address`; the self-report passes an address inside its anchor.
BundleInfo bundleInfoContaining(const void* address);

}  // namespace mw
