#include "host/placements.hpp"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <fstream>

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
        {"accounts-limit-2", "MeterwickAccountsByLimit", "systemMedium", {{"limit", "fiveHour"}}, {300, 900}},
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

TEST(PlacementsStore, AFileThatCannotBeReadIsKeptAsideToo) {
    const TempDir dir;
    std::filesystem::create_directory(dir / "widgets.json");  // reading a directory fails
    const auto load = loadPlacements(dir / "widgets.json", kNow);
    EXPECT_EQ(load.status, PlacementsStatus::unreadable);
    ASSERT_TRUE(load.keptAs);
    EXPECT_TRUE(std::filesystem::is_directory(*load.keptAs));
    EXPECT_NE(problemReport(dir / "widgets.json", load).find("cannot be read"), std::string::npos);
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
        {R"({"widgets": [{"id": "a", "kind": "k", "family": "f"}, {"id": "a", "kind": "k", "family": "f"}]})",
         "\"a\" is used twice"},
    };
    for (const auto& c : cases) {
        const auto decoded = decodePlacements(c.json);
        EXPECT_FALSE(decoded) << c.json;
        EXPECT_NE(decoded.error.find(c.message), std::string::npos) << c.json << " → " << decoded.error;
    }
}

TEST(PlacementsDecoding, KeepsKindsAndFamiliesThisBuildDoesNotKnow) {
    const auto decoded = decodePlacements(
        R"({"widgets": [{"id": "w", "kind": "MeterwickFuture", "family": "systemHuge", "extra": true}]})");
    ASSERT_TRUE(decoded);
    EXPECT_EQ(*decoded.value, (std::vector<PlacedWidget>{{"w", "MeterwickFuture", "systemHuge", {}, {0, 0}}}));
    // …and writes them back unchanged.
    EXPECT_EQ(decodePlacements(encodePlacements(*decoded.value)).value, decoded.value);
}

TEST(ResolvePlacement, NamesTheWidgetAndFamilyOrSaysWhyNot) {
    const auto resolve = [](const char* kind, const char* family) {
        return resolvePlacement({"id", kind, family, {}, {}});
    };
    const auto focus = resolve("MeterwickFocus", "systemSmall");
    ASSERT_TRUE(focus);
    EXPECT_EQ(focus.value->widget->kindWord, "focus");
    EXPECT_EQ(focus.value->family, WidgetFamily::systemSmall);
    EXPECT_TRUE(resolve("dashboard", "systemExtraLarge")) << "a kind word is accepted too";

    EXPECT_FALSE(resolve("MeterwickFuture", "systemSmall"));
    EXPECT_NE(resolve("MeterwickFocus", "systemHuge").error.find("unknown family"), std::string::npos);
    EXPECT_NE(resolve("MeterwickFocus", "systemLarge").error.find("Tool Focus does not come in \"systemLarge\""),
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
    EXPECT_EQ(parsePosition("40,120").value, (WidgetPosition{40, 120}));
    EXPECT_EQ(parsePosition("-10,0").value, (WidgetPosition{-10, 0}));
    for (const char* bad : {"", "40", "40,", ",1", "1.5,2", "a,b", "1,2,3", "999999999,1"}) {
        const auto parsed = parsePosition(bad);
        EXPECT_FALSE(parsed) << bad;
        EXPECT_NE(parsed.error.find("X,Y"), std::string::npos) << bad;
    }
}

}  // namespace
}  // namespace mw
