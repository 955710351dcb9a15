#pragma once
#include <array>
#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "payload/records.hpp"
#include "platform/option_table.hpp"

namespace mw {

inline constexpr const char* kPayloadFileName = "widget-payload.json";
// Real payloads are 20 KB to 1.4 MB. Anything larger than this is
// `unreadable` without being read, so a runaway or hostile file costs the
// desktop neither the memory nor the seconds of parsing it.
inline constexpr std::size_t kPayloadMaxBytes = 32 * 1024 * 1024;

// How a load went. The raw values are read back by the application.
enum class ReadStatus { ok, noContainer, missing, unreadable, decodeFailed };

template <>
struct OptionTable<ReadStatus> {
    static constexpr std::array<OptionCase<ReadStatus>, 5> cases{{
        {ReadStatus::ok, "ok", {}},
        {ReadStatus::noContainer, "noContainer", {}},
        {ReadStatus::missing, "missing", {}},
        {ReadStatus::unreadable, "unreadable", {}},
        {ReadStatus::decodeFailed, "decodeFailed", {}},
    }};
};

struct LoadResult {
    WidgetPayload payload;
    ReadStatus status = ReadStatus::ok;
    bool operator==(const LoadResult&) const = default;
};

// The only reader of the application's data. Nothing is cached: every call
// reads the file as it is at that moment. Only a regular file of at most
// kPayloadMaxBytes is read, opened without blocking: a FIFO, a device or a
// directory is `unreadable` at once, never a hang.
namespace WidgetStore {

// The bytes of a payload file as `load` reads them, or the status that
// stopped the read (missing, unreadable).
struct PayloadFile {
    std::string bytes;
    ReadStatus status = ReadStatus::ok;
};
PayloadFile readFile(const std::filesystem::path& file);

// Looks the container up from the process environment.
LoadResult load();
// With the container already looked up (nothing: noContainer, and no file
// system access at all).
LoadResult load(const std::optional<std::filesystem::path>& container);

}  // namespace WidgetStore
}  // namespace mw
