#pragma once
// Runs part of a test in a forked child, so that resource limits, kills and
// memory peaks stay out of the test process. The child reports back in text:
// empty when all went well, else what went wrong. Fork before the test starts
// any thread of its own; the child may start threads freely.

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <exception>
#include <functional>
#include <string>

namespace mw::testing {

// What `body` returned in the child, or why the child gave no answer.
inline std::string inChild(const std::function<std::string()>& body) {
    int fds[2];
    if (::pipe(fds) != 0) return "pipe failed";
    const pid_t pid = ::fork();
    if (pid < 0) return "fork failed";
    if (pid == 0) {
        ::close(fds[0]);
        std::string message;
        try {
            message = body();
        } catch (const std::exception& e) {
            message = std::string("threw: ") + e.what();
        } catch (...) {
            message = "threw something that is not an exception";
        }
        const char* data = message.data();
        std::size_t left = message.size();
        while (left > 0) {
            const ssize_t n = ::write(fds[1], data, left);
            if (n < 0 && errno == EINTR) continue;
            if (n <= 0) break;
            data += n;
            left -= static_cast<std::size_t>(n);
        }
        ::_exit(0);
    }
    ::close(fds[1]);
    std::string message;
    char buffer[4096];
    for (;;) {
        const ssize_t n = ::read(fds[0], buffer, sizeof buffer);
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) break;
        message.append(buffer, static_cast<std::size_t>(n));
    }
    ::close(fds[0]);
    int status = 0;
    while (::waitpid(pid, &status, 0) < 0 && errno == EINTR) {
    }
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0)
        message += " (child ended abnormally, status " + std::to_string(status) + ")";
    return message;
}

// The peak resident size of this process so far, in bytes.
inline long long peakResidentBytes() {
    struct rusage usage {};
    ::getrusage(RUSAGE_SELF, &usage);
    return static_cast<long long>(usage.ru_maxrss) * 1024;
}

// Memory bounds mean nothing under AddressSanitizer, which keeps freed
// memory in quarantine and pads every allocation.
#if defined(__SANITIZE_ADDRESS__)
inline constexpr bool kMemoryIsInstrumented = true;
#else
inline constexpr bool kMemoryIsInstrumented = false;
#endif

}  // namespace mw::testing
