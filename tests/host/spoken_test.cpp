// What a screen reader hears of a widget: the sentence and the row links
// read from real layouts of the sample payload, the reading rules on small
// hand-made lists, and the tool a link's dashboard shows.

#include "host/spoken.hpp"

#include <gtest/gtest.h>

#include "bundle/widget_view.hpp"
#include "payload/sample.hpp"
#include "render/fake_measurer.hpp"

namespace mw {
namespace {

const Date kNow{1'700'000'000};

render::DrawOp text(std::string words, render::Rect frame) {
    render::TextDraw draw;
    draw.runs = {{std::move(words), {}}};
    return {frame, {}, 0, draw};
}

TEST(Spoken, ReadsEveryRowOfTheAccountsBoardsWithItsLink) {
    const render::testing::FakeMeasurer measurer;
    const auto payload = samplePayload(kNow);
    for (const auto family : {WidgetFamily::systemMedium, WidgetFamily::systemLarge}) {
        const auto list = layoutWidget(AccountsEntry{kNow, payload, ReadStatus::ok}, family, measurer);
        const auto spoken = spokenContent(list);
        ASSERT_EQ(spoken.links.size(), list.links.size());
        for (std::size_t i = 0; i < list.links.size(); ++i) {
            const auto& link = spoken.links[i];
            EXPECT_EQ(link.url, list.links[i].url);
            EXPECT_TRUE(link.description.starts_with(link.name + ": ")) << link.description;
            EXPECT_NE(spoken.sentence.find(link.description), std::string::npos);
        }
        // Every drawn figure is heard.
        for (const auto& op : list.ops) {
            const auto* t = std::get_if<render::TextDraw>(&op.item);
            if (t == nullptr || !t->text().ends_with("%")) continue;
            EXPECT_NE(spoken.sentence.find(t->text()), std::string::npos) << t->text();
        }
        EXPECT_EQ(spoken.links[1].name, "Claude · Work");
    }
}

TEST(Spoken, ReadingRules) {
    render::DisplayList list;
    list.links = {{{0, 20, 300, 30}, "meterwick://tool/codex"}, {{0, 60, 300, 30}, "meterwick://tool/x"}};
    list.ops = {
        text("Usage", {0, 0, 40, 12}),
        text("+2 more", {250, 0, 40, 12}),
        text("C", {2, 24, 5, 8}),              // monogram of the name after it
        text("Codex", {10, 22, 40, 12}),
        text("Work", {10, 35, 30, 10}),        // stacked under the name
        text("5h", {100, 22, 10, 10}),
        text("18%", {120, 20, 20, 14}),        // joins its label
        text("4h 5m", {100, 36, 30, 10}),
        text("Codex 5h runs out in 26m", {0, 100, 200, 12}),  // outside every link
    };
    const auto spoken = spokenContent(list);
    EXPECT_EQ(spoken.sentence, "Usage: +2 more; Codex · Work: 5h 18%, 4h 5m; Codex 5h runs out in 26m");
    ASSERT_EQ(spoken.links.size(), 2u);  // the second has no words: it is named by its URL
    EXPECT_EQ(spoken.links[0], (SpokenLink{"Codex · Work", "Codex · Work: 5h 18%, 4h 5m", list.links[0].url,
                                           list.links[0].rect}));
    EXPECT_EQ(spoken.links[1].name, "meterwick://tool/x");
}

TEST(Spoken, NamesTheWidgetAndItsTool) {
    const auto payload = samplePayload(kNow);
    const auto& focus = *findWidget("focus");
    EXPECT_EQ(spokenName(focus, FocusEntry{kNow, payload, {"claude:work", "Claude · Work", "Work"}}),
              "Tool Focus · Claude · Work");
    EXPECT_EQ(spokenName(*findWidget("accounts"), AccountsEntry{kNow, payload}), "All Accounts");
}

TEST(Spoken, LinkedToolFallsBackToTheSameToolID) {
    const auto payload = samplePayload(kNow);
    struct Case {
        const char* key;
        const char* shown;
    };
    for (const auto& c : {Case{"claude:work", "claude:work"}, Case{"codex", "codex"},
                          Case{"claude:gone", "claude"}, Case{"codex:old", "codex"}, Case{"nope", "nope"}})
        EXPECT_EQ(linkedToolKey(payload, c.key), c.shown) << c.key;
}

}  // namespace
}  // namespace mw
