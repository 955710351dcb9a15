// The placed widgets survive a save that never finishes: the process killed
// part way, or the disk filling up. The file afterwards is the old list or
// the new one, and leftovers of the interrupted save do not disturb loading.

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <cstdio>
#include <random>

#include <gtest/gtest.h>

#include "host/placements.hpp"
#include "support/child_process.hpp"
#include "support/temp_dir.hpp"

namespace mw {
namespace {

using testing::inChild;
using testing::TempDir;

const Date kNow = *parseISO8601("2025-11-22T03:45:00Z");

// `count` widgets, large enough that a save takes several writes' worth of
// time; `shift` tells two lists apart everywhere.
std::vector<PlacedWidget> placements(int count, int shift) {
    std::vector<PlacedWidget> widgets;
    for (int i = 0; i < count; ++i)
        widgets.push_back({"focus-" + std::to_string(i + 1), "MeterwickFocus", "systemSmall",
                           {{"tool", "claude:work-" + std::to_string(shift)}, {"style", "enhanced"}},
                           {i + shift, 2 * i - shift}});
    return widgets;
}

const auto kOld = placements(60, 0);
const auto kNew = placements(45, 7);

std::vector<std::string> temporariesIn(const std::filesystem::path& dir) {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(dir))
        if (entry.path().filename() != kPlacementsFileName) names.push_back(entry.path().filename());
    return names;
}

// What is wrong with the store now, if anything: it must load fine and hold
// one of the two lists.
std::string judge(const std::filesystem::path& file) {
    const auto load = loadPlacements(file, kNow);
    if (load.status != PlacementsStatus::ok) return std::string(rawValue(load.status)) + ": " + load.problem;
    if (load.widgets != kOld && load.widgets != kNew)
        return "a list that was never saved, " + std::to_string(load.widgets.size()) + " widgets";
    return "";
}

TEST(PlacementsCrash, ASaveKilledAtAnyMomentLeavesTheOldOrTheNewList) {
    const TempDir dir;
    const auto file = dir / "meterwick" / kPlacementsFileName;
    ASSERT_TRUE(savePlacements(file, kOld));
    // Kill at moments spread over a few saves' time, however long a save
    // takes in this build.
    const auto start = std::chrono::steady_clock::now();
    ASSERT_TRUE(savePlacements(file, kOld));
    const auto saveTime =
        std::chrono::duration_cast<std::chrono::microseconds>(std::chrono::steady_clock::now() - start);
    const unsigned seed = std::random_device{}();
    std::mt19937 random(seed);
    std::uniform_int_distribution<long> pause(0, 4 * saveTime.count());
    int newSeen = 0;
    for (int round = 0; round < 30; ++round) {
        const pid_t pid = ::fork();
        ASSERT_GE(pid, 0);
        if (pid == 0) {
            for (int i = 0;; ++i) savePlacements(file, i % 2 == 0 ? kNew : kOld);
        }
        ::usleep(static_cast<useconds_t>(pause(random)));
        ::kill(pid, SIGKILL);
        ::waitpid(pid, nullptr, 0);
        ASSERT_EQ(judge(file), "") << "round " << round << ", seed " << seed;
        if (loadPlacements(file, kNow).widgets == kNew) ++newSeen;
    }
    // Killed saves may leave their temporary behind; the store loads past
    // them and saves over them.
    const auto leftovers = temporariesIn(file.parent_path());
    std::printf("[ measured ] a save takes %ld us; %d of 30 rounds ended on the new list; %zu temporaries left\n",
                static_cast<long>(saveTime.count()), newSeen, leftovers.size());
    for (const auto& name : leftovers) EXPECT_TRUE(name.starts_with(".widgets.json.")) << name;
    ASSERT_TRUE(savePlacements(file, kNew));
    EXPECT_EQ(loadPlacements(file, kNow).widgets, kNew);
}

TEST(PlacementsCrash, AStrayHalfWrittenTemporaryIsNotTheStore) {
    const TempDir dir;
    const auto file = dir / kPlacementsFileName;
    ASSERT_TRUE(savePlacements(file, kOld));
    const auto text = encodePlacements(kNew);
    dir.write(".widgets.json.k3Xq9Z", text.substr(0, text.size() / 2));
    EXPECT_EQ(loadPlacements(file, kNow).widgets, kOld);
    ASSERT_TRUE(savePlacements(file, kNew));
    EXPECT_EQ(loadPlacements(file, kNow).widgets, kNew);
}

// The disk fills up (a file size limit) before, or while, the new list is
// written: the save says so and the old list stays, with nothing beside it.
TEST(PlacementsCrash, ASaveOnAFullDiskFailsAndKeepsTheOldList) {
    const auto newSize = encodePlacements(kNew).size();
    for (const rlim_t limit : {rlim_t{0}, rlim_t{newSize / 2}, rlim_t{newSize - 1}}) {
        const TempDir dir;
        const auto file = dir / kPlacementsFileName;
        ASSERT_TRUE(savePlacements(file, kOld));
        const auto problems = inChild([&] {
            std::signal(SIGXFSZ, SIG_IGN);
            const struct rlimit small {limit, limit};
            if (::setrlimit(RLIMIT_FSIZE, &small) != 0) return std::string("setrlimit failed");
            return savePlacements(file, kNew) ? std::string("the save claims success") : std::string();
        });
        EXPECT_EQ(problems, "") << "limit " << limit;
        EXPECT_EQ(loadPlacements(file, kNow).widgets, kOld) << "limit " << limit;
        EXPECT_TRUE(temporariesIn(dir.path()).empty()) << "limit " << limit;
    }
}

}  // namespace
}  // namespace mw
