#pragma once
#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>

namespace mw {

// Why a file could not be read.
enum class FileReadError {
    missing,     // nothing at the path (or a dangling link)
    notRegular,  // a FIFO, a device, a directory, a socket
    tooLarge,    // over the cap given, or grew past it while being read
    failed,      // permission, I/O error
};

struct FileRead {
    std::string bytes;
    std::optional<FileReadError> error;
    bool operator==(const FileRead&) const = default;
};

// Reads a whole regular file of at most `maxBytes`, following links. The
// file is opened without blocking and checked with fstat before a byte is
// read, so a FIFO, a device such as /dev/zero, or a huge (sparse) file is
// refused at once instead of hanging or filling memory.
FileRead readRegularFile(const std::filesystem::path& path, std::size_t maxBytes);

}  // namespace mw
