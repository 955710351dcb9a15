#include "platform/atomic_write.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <string>

namespace mw {
namespace {

bool writeAll(int fd, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t n = ::write(fd, bytes.data(), bytes.size());
        if (n < 0) {
            if (errno == EINTR) continue;
            return false;
        }
        bytes.remove_prefix(static_cast<std::size_t>(n));
    }
    return true;
}

}  // namespace

bool writeFileAtomically(const std::filesystem::path& target, std::string_view bytes, Flush flush) {
    const auto dir = target.has_parent_path() ? target.parent_path() : std::filesystem::path(".");
    // mkstemp opens with O_CREAT | O_EXCL: a link planted at the temporary
    // name makes it pick another name instead of writing through the link.
    std::string name = ".";
    name += target.filename().string();
    name += ".XXXXXX";
    std::string pattern = (dir / name).string();
    const int fd = ::mkstemp(pattern.data());
    if (fd < 0) return false;
    bool ok = ::fchmod(fd, 0644) == 0 && writeAll(fd, bytes) && (flush == Flush::unflushed || ::fsync(fd) == 0);
    ok = ::close(fd) == 0 && ok;
    // rename replaces a link at the target itself; it never writes through it.
    if (ok && ::rename(pattern.c_str(), target.c_str()) == 0) return true;
    ::unlink(pattern.c_str());
    return false;
}

}  // namespace mw
