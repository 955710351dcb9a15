#pragma once
// What every window floor prints once its windows have drawn: its own
// resident memory as "key value" lines for bench/host/rss.sh.

#include <cstdio>
#include <fstream>
#include <string>

namespace mw::floor {

inline long statusKB(const std::string& field) {
    std::ifstream in("/proc/self/status");
    std::string line;
    while (std::getline(in, line))
        if (line.rfind(field + ":", 0) == 0) return std::stol(line.substr(field.size() + 1));
    return -1;
}

inline long pssKB() {
    std::ifstream in("/proc/self/smaps_rollup");
    std::string line;
    while (std::getline(in, line))
        if (line.rfind("Pss:", 0) == 0) return std::stol(line.substr(4));
    return -1;
}

inline void printMemory() {
    std::printf("rss_kb %ld\nhwm_kb %ld\nanon_kb %ld\nfile_kb %ld\npss_kb %ld\n", statusKB("VmRSS"), statusKB("VmHWM"),
                statusKB("RssAnon"), statusKB("RssFile"), pssKB());
    std::fflush(stdout);
}

// The widget families' sizes in points, the five windows every floor opens.
struct WindowSize {
    int width;
    int height;
};
inline constexpr WindowSize kWindowSizes[] = {{170, 170}, {364, 382}, {364, 170}, {364, 170}, {780, 382}};
inline constexpr const char* kLine = "Usage 42% \u00B7 resets in 2h 5m";
inline constexpr const char* kFont = "Inter Semi-Bold 12px";

}  // namespace mw::floor
