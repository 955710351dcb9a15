#include "host/first_run.hpp"

#include <gtest/gtest.h>

#include "support/temp_dir.hpp"

namespace mw {
namespace {

using testing::TempDir;

TEST(FreeSpot, TakesTheFirstSpotInReadingOrderThatKeepsClearOfTheOthers) {
    const ScreenRect screen{0, 0, 1000, 800};
    const ScreenRect first{24, 24, 170, 170};
    struct Row {
        const char* what;
        ScreenRect area;
        std::vector<ScreenRect> taken;
        std::optional<WidgetPosition> expected;
    };
    const Row rows[] = {
        {"empty area: the top-left margin", screen, {}, WidgetPosition{24, 24}},
        {"a panel on top moves the margin down", {0, 30, 1000, 770}, {}, WidgetPosition{24, 54}},
        {"right of the first widget", screen, {first}, WidgetPosition{210, 24}},
        {"a row that is full wraps below", {0, 0, 400, 800}, {first}, WidgetPosition{24, 210}},
        {"a gap just wide enough is used", screen, {first, {400, 24, 170, 170}}, WidgetPosition{210, 24}},
        {"a gap too narrow is skipped", screen, {first, {390, 24, 170, 170}}, WidgetPosition{576, 24}},
        {"a widget dragged off the grid is avoided", screen, {{100, 100, 170, 170}}, WidgetPosition{286, 24}},
        {"no room at all", {0, 0, 200, 200}, {}, std::nullopt},
        {"the only spot is taken", {0, 0, 220, 220}, {first}, std::nullopt},
    };
    for (const auto& row : rows) EXPECT_EQ(freeSpot(row.area, row.taken, 170, 170), row.expected) << row.what;
}

TEST(NewWidgetSpot, GoesToAFreeSpotOfTheChosenMonitorAndNamesIt) {
    const std::vector<Monitor> monitors{
        {"HDMI-A-1", "", {0, 0, 1920, 1080}, {}, true},
        {"DP-1", "", {1920, 0, 1280, 1024}, {1920, 40, 1280, 984}, false},
    };
    const std::vector<PlacedWidget> widgets{
        {"focus-1", "MeterwickFocus", "systemSmall", {}, {24, 24}},
        {"accounts-1", "MeterwickAccounts", "systemMedium", {}, {24, 24}, {}, "DP-1"},
        {"bogus-1", "NoSuchKind", "systemSmall", {}, {210, 24}},  // not shown: takes no room
    };
    EXPECT_EQ(newWidgetSpot(monitors, std::nullopt, widgets, WidgetFamily::systemSmall),
              (NewWidgetSpot{{210, 24}, std::nullopt, "HDMI-A-1", true}));
    // The work area of DP-1 starts 40 points down; the Accounts widget stored at
    // (24, 24) is shown clamped to (24, 40), and the new one goes beside it.
    EXPECT_EQ(newWidgetSpot(monitors, "DP-1", widgets, WidgetFamily::systemMedium),
              (NewWidgetSpot{{404, 64}, "DP-1", "DP-1", true}));
    EXPECT_EQ(newWidgetSpot({}, std::nullopt, widgets, WidgetFamily::systemSmall).free, false);
}

TEST(ContainerFinding, SaysWhatWasFoundWhereTheDataShouldBe) {
    const TempDir root;
    std::filesystem::create_directories(root / "empty");
    std::filesystem::create_directories(root / "dir-payload" / kPayloadFileName);
    std::filesystem::create_directories(root / "ok");
    root.write("ok/widget-payload.json", "{}");
    root.write("plain-file", "x");
    struct Row {
        std::optional<std::filesystem::path> container;
        ReadStatus status;
        ContainerFinding expected;
        std::string mentions;  // empty: no tooltip at all
    };
    const Row rows[] = {
        {std::nullopt, ReadStatus::noContainer, ContainerFinding::nowhere, "METERWICK_CONTAINER"},
        {root / "absent", ReadStatus::noContainer, ContainerFinding::noDirectory, (root / "absent").string()},
        {root / "plain-file", ReadStatus::noContainer, ContainerFinding::notADirectory, "other than a folder"},
        {root / "empty", ReadStatus::missing, ContainerFinding::noFile,
         (root / "empty" / kPayloadFileName).string()},
        {root / "dir-payload", ReadStatus::unreadable, ContainerFinding::notARegularFile, "not a regular file"},
        {root / "ok", ReadStatus::decodeFailed, ContainerFinding::notJSON, "not widget data"},
        {root / "ok", ReadStatus::ok, ContainerFinding::fine, ""},
    };
    for (const auto& row : rows) {
        const auto finding = inspectContainer(row.container, row.status);
        EXPECT_EQ(finding, row.expected) << row.mentions;
        const auto tooltip = dataProblemTooltip(row.container, finding);
        if (row.mentions.empty())
            EXPECT_EQ(tooltip, "");
        else
            EXPECT_NE(tooltip.find(row.mentions), std::string::npos) << tooltip;
    }
}

TEST(PreviewEntry, NeverShowsAPanelAndKeepsTheChosenSettings) {
    const TempDir root;  // no payload in it
    const ProviderContext context{root.path(), *parseISO8601("2025-11-22T03:45:00Z"), {}};
    for (const auto& widget : widgetDeclarations()) {
        const auto entry = previewEntry(widget, context, defaultParameters(widget));
        EXPECT_FALSE(entryPanel(entry)) << widget.kind;
    }
    const auto enhanced = previewEntry(*findWidget("focus"), context, {{"style", "enhanced"}, {"tool", "nosuch"}});
    EXPECT_FALSE(entryPanel(enhanced));
    EXPECT_EQ(std::get<FocusEntry>(enhanced).style, WidgetDetailStyle::enhanced);
}

}  // namespace
}  // namespace mw
