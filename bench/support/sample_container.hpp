#pragma once
// A private shared container holding the demo's sample payload, written for a
// fixed "now" so every run measures the same document. Removed on destruction.

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>

#include "payload/codec.hpp"
#include "payload/sample.hpp"
#include "payload/store.hpp"
#include "platform/date.hpp"

namespace mw::bench {

inline constexpr const char* kSampleNow = "2026-11-22T10:00:00Z";

inline Date sampleNow() {
    return *parseISO8601(kSampleNow);
}

class SampleContainer {
  public:
    SampleContainer() {
        std::string pattern = (std::filesystem::temp_directory_path() / "mw-bench-XXXXXX").string();
        if (mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("cannot create " + pattern);
        dir_ = pattern;
        std::ofstream(dir_ / kPayloadFileName, std::ios::binary) << encodePayload(samplePayload(sampleNow()));
    }
    ~SampleContainer() {
        std::error_code ignored;
        std::filesystem::remove_all(dir_, ignored);
    }
    SampleContainer(const SampleContainer&) = delete;
    SampleContainer& operator=(const SampleContainer&) = delete;

    const std::filesystem::path& dir() const { return dir_; }

  private:
    std::filesystem::path dir_;
};

}  // namespace mw::bench
