#include "payload/store.hpp"

#include <array>
#include <string>
#include <system_error>

#include "payload/codec.hpp"
#include "platform/container.hpp"
#include "platform/read_file.hpp"

namespace mw {
namespace {

LoadResult failed(ReadStatus status) { return {emptyPayload(), status}; }

}  // namespace

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
