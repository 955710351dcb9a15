#include "payload/store.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <string>
#include <system_error>

#include "payload/codec.hpp"
#include "platform/container.hpp"

namespace mw {
namespace {

constexpr std::array<std::pair<ReadStatus, std::string_view>, 5> kReadStatusRaw{{
    {ReadStatus::ok, "ok"},
    {ReadStatus::noContainer, "noContainer"},
    {ReadStatus::missing, "missing"},
    {ReadStatus::unreadable, "unreadable"},
    {ReadStatus::decodeFailed, "decodeFailed"},
}};

// The whole file, or nothing when opening or reading fails (a directory
// opens but does not read).
std::optional<std::string> readWholeFile(const std::filesystem::path& path) {
    const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0) return std::nullopt;
    std::string bytes;
    struct stat info {};
    if (::fstat(fd, &info) == 0 && info.st_size > 0) bytes.reserve(static_cast<std::size_t>(info.st_size));
    std::array<char, 65536> chunk{};
    for (;;) {
        const ssize_t n = ::read(fd, chunk.data(), chunk.size());
        if (n == 0) break;
        if (n < 0) {
            if (errno == EINTR) continue;
            ::close(fd);
            return std::nullopt;
        }
        bytes.append(chunk.data(), static_cast<std::size_t>(n));
    }
    ::close(fd);
    return bytes;
}

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

LoadResult load(const std::optional<std::filesystem::path>& container) {
    if (!container) return failed(ReadStatus::noContainer);
    const auto file = *container / kPayloadFileName;
    std::error_code ec;
    if (!std::filesystem::exists(file, ec)) return failed(ReadStatus::missing);
    auto bytes = readWholeFile(file);
    if (!bytes) return failed(ReadStatus::unreadable);
    auto payload = decodePayload(*bytes);
    if (!payload) return failed(ReadStatus::decodeFailed);
    return {std::move(*payload), ReadStatus::ok};
}

}  // namespace WidgetStore
}  // namespace mw
