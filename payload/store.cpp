#include "payload/store.hpp"

#include <array>
#include <string>
#include <system_error>

#include "payload/codec.hpp"
#include "platform/container.hpp"
#include "platform/read_file.hpp"

namespace mw {
namespace {

constexpr std::array<std::pair<ReadStatus, std::string_view>, 5> kReadStatusRaw{{
    {ReadStatus::ok, "ok"},
    {ReadStatus::noContainer, "noContainer"},
    {ReadStatus::missing, "missing"},
    {ReadStatus::unreadable, "unreadable"},
    {ReadStatus::decodeFailed, "decodeFailed"},
}};

LoadResult failed(ReadStatus status) { return {emptyPayload(), status}; }

}  // namespace

std::string_view rawValue(ReadStatus status) {
    for (const auto& [value, raw] : kReadStatusRaw)
        if (value == status) return raw;
    return {};
}

std::optional<ReadStatus> readStatusFromRaw(std::string_view raw) {
    for (const auto& [value, text] : kReadStatusRaw)
        if (text == raw) return value;
    return std::nullopt;
}

namespace WidgetStore {

LoadResult load() { return load(containerDirectory()); }

PayloadFile readFile(const std::filesystem::path& file) {
    auto read = readRegularFile(file, kPayloadMaxBytes);
    if (read.error == FileReadError::missing) return {{}, ReadStatus::missing};
    if (read.error) return {{}, ReadStatus::unreadable};
    return {std::move(read.bytes), ReadStatus::ok};
}

LoadResult load(const std::optional<std::filesystem::path>& container) {
    if (!container) return failed(ReadStatus::noContainer);
    const auto file = readFile(*container / kPayloadFileName);
    if (file.status != ReadStatus::ok) return failed(file.status);
    auto payload = decodePayload(file.bytes);
    if (!payload) return failed(ReadStatus::decodeFailed);
    return {std::move(*payload), ReadStatus::ok};
}

}  // namespace WidgetStore
}  // namespace mw
