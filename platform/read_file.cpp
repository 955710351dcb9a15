#include "platform/read_file.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>

namespace mw {
namespace {

// Closes the descriptor on every way out.
struct Descriptor {
    int fd;
    ~Descriptor() {
        if (fd >= 0) ::close(fd);
    }
};

}  // namespace

FileRead readRegularFile(const std::filesystem::path& path, std::size_t maxBytes) {
    // O_NONBLOCK: opening a FIFO with no writer returns at once instead of
    // waiting for one; it is refused below as not a regular file.
    const Descriptor file{::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY)};
    if (file.fd < 0)
        return {{}, (errno == ENOENT || errno == ENOTDIR) ? FileReadError::missing : FileReadError::failed};
    struct stat info {};
    if (::fstat(file.fd, &info) != 0) return {{}, FileReadError::failed};
    if (!S_ISREG(info.st_mode)) return {{}, FileReadError::notRegular};
    if (info.st_size < 0 || static_cast<unsigned long long>(info.st_size) > maxBytes)
        return {{}, FileReadError::tooLarge};

    std::string bytes;
    bytes.reserve(static_cast<std::size_t>(info.st_size));
    std::array<char, 65536> chunk{};
    for (;;) {
        const ssize_t n = ::read(file.fd, chunk.data(), chunk.size());
        if (n == 0) break;
        if (n < 0) {
            if (errno == EINTR) continue;
            return {{}, FileReadError::failed};
        }
        // A file that grows while it is read is held to the same cap.
        if (bytes.size() + static_cast<std::size_t>(n) > maxBytes) return {{}, FileReadError::tooLarge};
        bytes.append(chunk.data(), static_cast<std::size_t>(n));
    }
    return {std::move(bytes), std::nullopt};
}

}  // namespace mw
