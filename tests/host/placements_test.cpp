#include "host/placements.hpp"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <fstream>
#include <functional>
#include <thread>

#include <nlohmann/json.hpp>

#include "support/temp_dir.hpp"

namespace mw {
namespace {

using testing::readFile;
using testing::TempDir;

const Date kNow = *parseISO8601("2025-11-22T03:45:00Z");

std::vector<PlacedWidget> threeWidgets() {
    return {
        {"focus-1", "MeterwickFocus", "systemSmall", {{"tool", "claude:work"}, {"style", "enhanced"}}, {40, 60}},
        {"accounts-1", "MeterwickAccounts", "systemLarge", {}, {-20, 0}},
        {"accounts-limit-2", "MeterwickAccountsByLimit", "systemMedium", {{"limit", "fiveHour"}}, {300, 900},
         {}, "DELL U2720Q@1920,0"},
    };
}

TEST(PlacementsFile, FollowsXDGConfigHomeThenHome) {
    EXPECT_EQ(placementsFile({"/cfg", "/home/u"}), std::filesystem::path("/cfg/meterwick/widgets.json"));
    EXPECT_EQ(placementsFile({std::nullopt, "/home/u"}),
              std::filesystem::path("/home/u/.config/meterwick/widgets.json"));
    EXPECT_EQ(placementsFile({std::nullopt, std::nullopt}), std::nullopt);
}

TEST(PlacementsStore, RoundTripsAndReplacesTheFileAtomicallyWithoutLeftovers) {
    const TempDir dir;
    const auto file = dir / "meterwick" / "widgets.json";  // the directory is created on save
    ASSERT_TRUE(savePlacements(file, threeWidgets()));
    const auto load = loadPlacements(file, kNow);
    EXPECT_EQ(load.status, PlacementsStatus::ok);
    EXPECT_EQ(load.widgets, threeWidgets());
    EXPECT_TRUE(load.problem.empty());
    struct stat before {};
    ASSERT_EQ(::stat(file.c_str(), &before), 0);
    EXPECT_EQ(before.st_mode & 0777, 0644u);

    ASSERT_TRUE(savePlacements(file, {threeWidgets().front()}));
    struct stat after {};
    ASSERT_EQ(::stat(file.c_str(), &after), 0);
    EXPECT_NE(before.st_ino, after.st_ino) << "a new file is renamed over the old one";
    EXPECT_EQ(loadPlacements(file, kNow).widgets, std::vector{threeWidgets().front()});
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(file.parent_path()), {}), 1)
        << "no temporary left behind";
}

TEST(PlacementsStore, AMissingFileIsAnEmptyStoreThatMayBeWritten) {
    const TempDir dir;
    const auto load = loadPlacements(dir / "widgets.json", kNow);
    EXPECT_EQ(load.status, PlacementsStatus::missing);
    EXPECT_TRUE(load.widgets.empty());
    EXPECT_TRUE(load.writable());
    EXPECT_EQ(problemReport(dir / "widgets.json", load), "");
}

TEST(PlacementsStore, ACorruptFileIsKeptAsideAndReported) {
    const TempDir dir;
    const auto file = dir / "widgets.json";
    const std::string garbage = "{\"widgets\": [ {\"id\": \"focus-1\", ";
    dir.write("widgets.json", garbage);

    const auto load = loadPlacements(file, kNow);
    EXPECT_EQ(load.status, PlacementsStatus::corrupt);
    EXPECT_TRUE(load.widgets.empty());
    ASSERT_TRUE(load.keptAs);
    EXPECT_EQ(*load.keptAs, dir / "widgets.json.corrupt-20251122T034500Z");
    EXPECT_EQ(readFile(*load.keptAs), garbage) << "the bad file is kept byte for byte";
    EXPECT_FALSE(std::filesystem::exists(file));
    EXPECT_TRUE(load.writable());
    const auto report = problemReport(file, load);
    EXPECT_NE(report.find("not valid JSON"), std::string::npos) << report;
    EXPECT_NE(report.find("widgets.json.corrupt-20251122T034500Z"), std::string::npos) << report;

    // A second bad file in the same second does not replace the first copy.
    dir.write("widgets.json", "[]");
    const auto again = loadPlacements(file, kNow);
    ASSERT_TRUE(again.keptAs);
    EXPECT_EQ(*again.keptAs, dir / "widgets.json.corrupt-20251122T034500Z-1");
    EXPECT_EQ(readFile(*again.keptAs), "[]");
    EXPECT_EQ(readFile(*load.keptAs), garbage);
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir.path()), {}), 2) << "the two copies, nothing else";
}

TEST(PlacementsStore, WhatIsNotASmallRegularFileIsUnreadableAtOnceAndKeptAside) {
    // Each of these hung, filled memory or read garbage before the store
    // read only regular files of bounded size; the ctest deadline catches a
    // hang.
    struct Case {
        const char* name;
        std::function<void(const std::filesystem::path&)> make;
        const char* problem;
    };
    const Case cases[] = {
        {"directory", [](const auto& f) { std::filesystem::create_directory(f); }, "not a regular file"},
        {"fifo", [](const auto& f) { ASSERT_EQ(::mkfifo(f.c_str(), 0644), 0); }, "not a regular file"},
        // The link is what is kept aside: never the device it leads to.
        {"link to /dev/zero", [](const auto& f) { std::filesystem::create_symlink("/dev/zero", f); },
         "not a regular file"},
        {"sparse 2 GB",
         [](const auto& f) {
             std::ofstream(f).close();
             std::filesystem::resize_file(f, 2ull << 30);
         },
         "larger than"},
    };
    for (const auto& c : cases) {
        const TempDir dir;
        const auto file = dir / "widgets.json";
        c.make(file);
        const auto read = readPlacements(file);
        EXPECT_EQ(read.status, PlacementsStatus::unreadable) << c.name;
        EXPECT_FALSE(read.keptAs) << c.name << ": a plain read leaves the file where it is";
        const auto load = loadPlacements(file, kNow);
        ASSERT_TRUE(load.keptAs) << c.name;
        EXPECT_EQ(load.keptAs->parent_path(), dir.path()) << c.name;
        EXPECT_NE(problemReport(file, load).find(c.problem), std::string::npos) << c.name;
    }
}

TEST(PlacementsStore, ABadFileThatCannotBeMovedIsNeitherMovedNorWritable) {
    if (::geteuid() == 0) GTEST_SKIP() << "permissions do not bind root";
    const TempDir dir;
    std::filesystem::create_directory(dir / "locked");
    const auto file = dir / "locked" / "widgets.json";
    std::ofstream(file) << "nonsense";
    std::filesystem::permissions(dir / "locked",
                                 std::filesystem::perms::owner_read | std::filesystem::perms::owner_exec);
    const auto load = loadPlacements(file, kNow);
    std::filesystem::permissions(dir / "locked", std::filesystem::perms::owner_all);
    EXPECT_EQ(load.status, PlacementsStatus::corrupt);
    EXPECT_FALSE(load.keptAs);
    EXPECT_FALSE(load.writable());
    EXPECT_EQ(readFile(file), "nonsense");
    EXPECT_NE(problemReport(file, load).find("left untouched"), std::string::npos);
}

TEST(PlacementsDecoding, RejectsStructuralFaultsWithAMessage) {
    struct Case {
        const char* json;
        const char* message;
    };
    const Case cases[] = {
        {"[]", "must be an object"},
        {"{}", "missing \"widgets\""},
        {R"({"widgets": {}})", "must be an array"},
        {R"({"version": 2, "widgets": []})", "newer version"},
        {R"({"widgets": [{"kind": "MeterwickFocus", "family": "systemSmall"}]})", "widget 1: missing \"id\""},
        {R"({"widgets": [{"id": "", "kind": "k", "family": "f"}]})", "\"id\" must not be empty"},
        {R"({"widgets": [{"id": "a", "kind": 3, "family": "f"}]})", "\"kind\" must be a string"},
        {R"({"widgets": [{"id": "a", "kind": "k", "family": "f", "parameters": {"tool": 1}}]})",
         "parameter \"tool\" must be a string"},
        {R"({"widgets": [{"id": "a", "kind": "k", "family": "f", "position": {"x": 1.5, "y": 0}}]})",
         "\"x\" must be an integer"},
        {R"({"widgets": [{"id": "a", "kind": "k", "family": "f", "position": {"x": 1}}]})", "missing \"y\""},
        // Read as a signed integer these wrapped to -1 and were accepted.
        {R"({"widgets": [{"id": "a", "kind": "k", "family": "f", "position": {"x": 18446744073709551615, "y": 0}}]})",
         "\"x\" is out of range"},
        {R"({"widgets": [{"id": "a", "kind": "k", "family": "f", "position": {"x": 0, "y": 9223372036854775808}}]})",
         "\"y\" is out of range"},
        {R"({"version": 18446744073709551615, "widgets": []})", "\"version\" is out of range"},
        {R"({"widgets": [{"id": "a", "kind": "k", "family": "f", "monitor": 1}]})", "\"monitor\" must be a string"},
        {R"({"widgets": [{"id": "a", "kind": "k", "family": "f"}, {"id": "a", "kind": "k", "family": "f"}]})",
         "\"a\" is used twice"},
    };
    for (const auto& c : cases) {
        const auto decoded = decodePlacements(c.json);
        EXPECT_FALSE(decoded) << c.json;
        EXPECT_NE(decoded.error().find(c.message), std::string::npos) << c.json << " → " << decoded.error();
    }
}

TEST(PlacementsDecoding, KeepsKindsAndFamiliesThisBuildDoesNotKnow) {
    const auto decoded = decodePlacements(
        R"({"widgets": [{"id": "w", "kind": "MeterwickFuture", "family": "systemHuge", "extra": true}]})");
    ASSERT_TRUE(decoded);
    EXPECT_EQ(*decoded, (std::vector<PlacedWidget>{
                                  {"w", "MeterwickFuture", "systemHuge", {}, {0, 0}, R"({"extra":true})"}}));
    // …and writes them back unchanged.
    EXPECT_EQ(decodePlacements(encodePlacements(*decoded)).value(), *decoded);
}

TEST(ResolvePlacement, NamesTheWidgetAndFamilyOrSaysWhyNot) {
    const auto resolve = [](const char* kind, const char* family) {
        return resolvePlacement({"id", kind, family, {}, {}});
    };
    const auto focus = resolve("MeterwickFocus", "systemSmall");
    ASSERT_TRUE(focus);
    EXPECT_EQ(focus->widget->kindWord, "focus");
    EXPECT_EQ(focus->family, WidgetFamily::systemSmall);
    EXPECT_TRUE(resolve("dashboard", "systemExtraLarge")) << "a kind word is accepted too";

    EXPECT_FALSE(resolve("MeterwickFuture", "systemSmall"));
    EXPECT_NE(resolve("MeterwickFocus", "systemHuge").error().find("unknown family"), std::string::npos);
    EXPECT_NE(resolve("MeterwickFocus", "systemLarge").error().find("Tool Focus does not come in \"systemLarge\""),
              std::string::npos);
}

TEST(PlacementEditing, IDsCountUpPerKindWordAndNeverReuseTheLargest) {
    const auto* focus = findWidget("focus");
    const auto* limit = findWidget("accounts-limit");
    ASSERT_TRUE(focus && limit);
    EXPECT_EQ(nextPlacementID({}, *focus), "focus-1");
    auto widgets = threeWidgets();
    EXPECT_EQ(nextPlacementID(widgets, *focus), "focus-2");
    EXPECT_EQ(nextPlacementID(widgets, *limit), "accounts-limit-3");
    widgets.push_back({"focus-x", "MeterwickFocus", "systemSmall", {}, {}});  // hand-written id
    widgets.push_back({"focus-7", "MeterwickFocus", "systemSmall", {}, {}});
    EXPECT_EQ(nextPlacementID(widgets, *focus), "focus-8");
    EXPECT_EQ(findPlacement(widgets, "focus-7")->id, "focus-7");
    EXPECT_EQ(findPlacement(widgets, "focus-9"), nullptr);
}

TEST(PlacementEditing, DefaultPositionsCascadePastTakenSpots) {
    EXPECT_EQ(defaultPosition({}), (WidgetPosition{48, 48}));
    std::vector<PlacedWidget> widgets{{"a", "k", "f", {}, {48, 48}}, {"b", "k", "f", {}, {80, 80}}};
    EXPECT_EQ(defaultPosition(widgets), (WidgetPosition{112, 112}));
}

TEST(PlacementEditing, ParsesPositions) {
    EXPECT_EQ(parsePosition("40,120").value(), (WidgetPosition{40, 120}));
    EXPECT_EQ(parsePosition("-10,0").value(), (WidgetPosition{-10, 0}));
    for (const char* bad : {"", "40", "40,", ",1", "1.5,2", "a,b", "1,2,3", "999999999,1"}) {
        const auto parsed = parsePosition(bad);
        EXPECT_FALSE(parsed) << bad;
        EXPECT_NE(parsed.error().find("X,Y"), std::string::npos) << bad;
    }
}

}  // namespace
}  // namespace mw

namespace mw {
namespace {

// Read-modify-write through the lock: concurrent writers, links, and
// members written by a newer version.
TEST(PlacementsModify, ConcurrentWritersLoseNoUpdate) {
    const TempDir dir;
    const auto file = dir / "meterwick" / "widgets.json";
    constexpr int kWriters = 4;
    constexpr int kEach = 15;
    std::vector<std::thread> writers;
    for (int w = 0; w < kWriters; ++w)
        writers.emplace_back([&, w] {
            for (int i = 0; i < kEach; ++i)
                modifyPlacements(file, kNow, [&](std::vector<PlacedWidget>& widgets) {
                    widgets.push_back({"w" + std::to_string(w) + "-" + std::to_string(i), "MeterwickFocus",
                                       "systemSmall", {}, {}});
                    return true;
                });
        });
    for (auto& t : writers) t.join();
    EXPECT_EQ(readPlacements(file).widgets.size(), std::size_t{kWriters * kEach});
}

TEST(PlacementsModify, AHeldLockDelaysThenRefusesWithoutTouchingTheFile) {
    const TempDir dir;
    const auto file = dir / "widgets.json";
    ASSERT_TRUE(savePlacements(file, threeWidgets()));
    {
        const auto held = PlacementsLock::acquire(file, std::chrono::milliseconds(0));
        ASSERT_TRUE(held) << held.error();
        const auto edit = modifyPlacements(
            file, kNow, [](auto& widgets) { return widgets.clear(), true; }, std::chrono::milliseconds(50));
        EXPECT_FALSE(edit.saved);
        EXPECT_NE(edit.error.find("locked"), std::string::npos) << edit.error;
        EXPECT_EQ(readPlacements(file).widgets, threeWidgets());
    }
    EXPECT_TRUE(modifyPlacements(file, kNow, [](auto& widgets) { return widgets.clear(), true; }).saved);
}

TEST(PlacementsModify, WritesThroughALinkAndKeepsUnknownMembers) {
    const TempDir dir;
    std::filesystem::create_directories(dir / "dotfiles");
    std::filesystem::create_directories(dir / "config");
    const auto target = dir / "dotfiles" / "widgets.json";
    const auto file = dir / "config" / "widgets.json";
    std::filesystem::create_symlink("../dotfiles/widgets.json", file);
    dir.write("dotfiles/widgets.json", R"({"version": 1, "theme": {"glass": 0.4}, "widgets": [
        {"id": "focus-1", "kind": "MeterwickFocus", "family": "systemSmall", "monitor": "DP-1",
         "pinned": true, "position": {"x": 1, "y": 2, "anchor": "bottom-right"}}]})");

    const auto edit = modifyPlacements(file, kNow, [](std::vector<PlacedWidget>& widgets) {
        widgets.front().position = {10, 20};
        return true;
    });
    ASSERT_TRUE(edit.saved) << edit.error;
    EXPECT_TRUE(std::filesystem::is_symlink(file)) << "the dotfiles manager's link is kept";
    const auto written = nlohmann::json::parse(readFile(target));
    EXPECT_EQ(written["theme"], nlohmann::json({{"glass", 0.4}}));
    EXPECT_EQ(written["widgets"][0]["monitor"], "DP-1");
    EXPECT_EQ(written["widgets"][0]["pinned"], true);
    EXPECT_EQ(written["widgets"][0]["position"], nlohmann::json({{"x", 10}, {"y", 20}, {"anchor", "bottom-right"}}))
        << "a move keeps what a newer version wrote beside x and y";
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir / "dotfiles"), {}), 1)
        << "the new file replaced the target beside it, leaving no temporary";

    // A corrupt target is kept aside beside itself, and the link still leads to the new list.
    dir.write("dotfiles/widgets.json", "{");
    ASSERT_TRUE(modifyPlacements(file, kNow, [](auto&) { return true; }).saved);
    EXPECT_TRUE(std::filesystem::is_symlink(file));
    EXPECT_EQ(readPlacements(file).status, PlacementsStatus::ok);
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir / "dotfiles"), {}), 2);
}

TEST(PlacementsModify, AnEditThatThrowsOrChangesNothingLeavesTheFileAlone) {
    const TempDir dir;
    const auto file = dir / "widgets.json";
    dir.write("widgets.json", "not json");
    EXPECT_THROW(modifyPlacements(file, kNow, [](auto&) -> bool { throw std::runtime_error("no such id"); }),
                 std::runtime_error);
    EXPECT_FALSE(modifyPlacements(file, kNow, [](auto&) { return false; }).changed);
    EXPECT_EQ(readFile(file), "not json") << "a bad file is moved aside only when it is about to be replaced";
    EXPECT_TRUE(PlacementsLock::acquire(file, std::chrono::milliseconds(0))) << "the lock was released";
}

}  // namespace
}  // namespace mw
