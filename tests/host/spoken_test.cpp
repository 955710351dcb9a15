// What a screen reader hears of a widget: the sentence and the row links
// read from real layouts of the sample payload, the reading rules on small
// hand-made lists, and the tool a link's dashboard shows.

#include "host/spoken.hpp"

#include <gtest/gtest.h>

#include "bundle/widget_view.hpp"
#include "payload/sample.hpp"
#include "render/fake_measurer.hpp"
#include "host/first_run.hpp"


namespace mw {
namespace {

const Date kNow{1'700'000'000};

render::DrawOp text(std::string words, render::Rect frame) {
    render::TextDraw draw;
    draw.runs = {{std::move(words), {}}};
    return {frame, {}, 0, draw};
}

// Every kind in every family and style, on the sample: what colour, bars
// and pace marks show is heard in words, each row link is read whole within
// the sentence, and a few sentences are pinned word for word.
TEST(Spoken, EveryWidgetIsReadWithWhatItsMarksMean) {
    const render::testing::FakeMeasurer measurer;
    const ProviderContext context{std::nullopt, kNow, {}};
    struct Case {
        const char* kind;
        IntentParameters parameters;
        std::vector<const char*> heard;  // fragments of the sentence, in any family
    };
    const std::vector<Case> cases{
        {"focus", {{"tool", "claude:work"}}, {"CLAUDE · WORK: 91% used, critical; resets in 40m; 1m ago"}},
        {"focus",
         {{"tool", "claude:work"}, {"style", "enhanced"}},
         {"Claude · Work: 5h 91% used, on pace; resets in 40m; Week 77% used, over pace; resets in 5d; On pace"}},
        {"accounts", {}, {"Claude · Work: 5h 91% used, on pace, resets in 40m; Week 77% used, over pace, resets in 5d."}},
        {"accounts-limit", {{"percent", "left"}}, {"Weekly room: +4 more. Gemini: 88% left, on pace; resets in 6d."}},
        {"sparkline", {}, {"Claude · Work: 5h 7% over pace; last 5h: highest 18% over pace, lowest 18% under pace"}},
        {"dashboard", {}, {"Session 91% used, critical, resets in 2h 10m, +6% vs pace; Weekly 77% used, warning"}},
    };
    for (const auto& c : cases) {
        const auto& widget = *findWidget(c.kind);
        for (const auto family : widget.families) {
            const auto list = layoutWidget(previewEntry(widget, context, c.parameters), family, measurer);
            const auto spoken = spokenContent(list);
            const auto where = std::string(c.kind) + " " + std::string(rawValue(family)) + ": " + spoken.sentence;
            for (const auto* fragment : c.heard)
                if (family == widget.families.front()) {
                    EXPECT_NE(spoken.sentence.find(fragment), std::string::npos) << fragment << " in " << where;
                }
            // A bare figure would leave its colour unsaid: each percent is
            // followed by what it is.
            for (auto at = spoken.sentence.find('%'); at != std::string::npos; at = spoken.sentence.find('%', at + 1)) {
                const auto after = spoken.sentence.substr(at + 1, 12);
                EXPECT_TRUE(after.starts_with(" used") || after.starts_with(" left") || after.starts_with(" over pace") ||
                            after.starts_with(" under pace") || after.starts_with(" vs pace") || after.starts_with(" on "))
                    << where;
            }
            ASSERT_EQ(spoken.links.size(), list.links.size()) << where;
            for (std::size_t i = 0; i < list.links.size(); ++i) {
                EXPECT_EQ(spoken.links[i].url, list.links[i].url);
                EXPECT_NE(spoken.sentence.find(spoken.links[i].description), std::string::npos) << where;
            }
        }
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
        {{120, 20, 20, 14}, {}, 0, render::AccessibilityBegin{"18% used, over pace"}},  // read in place of
        text("18%", {120, 20, 20, 14}),                                                   // what it covers
        {{120, 20, 20, 14}, {}, 0, render::AccessibilityEnd{}},
        text("4h 5m", {100, 36, 30, 10}),
        {{0, 50, 20, 10}, {}, 0, render::AccessibilityBegin{""}},  // hidden
        text("-5h", {0, 50, 20, 10}),
        {{0, 50, 20, 10}, {}, 0, render::AccessibilityEnd{}},
        text("Codex 5h runs out in 26m", {0, 100, 200, 12}),  // outside every link
    };
    const auto spoken = spokenContent(list);
    EXPECT_EQ(spoken.sentence, "Usage: +2 more. Codex · Work: 5h 18% used, over pace; 4h 5m. Codex 5h runs out in 26m");
    ASSERT_EQ(spoken.links.size(), 2u);  // the second has no words: it is named by its URL
    EXPECT_EQ(spoken.links[0], (SpokenLink{"Codex · Work", "Codex · Work: 5h 18% used, over pace; 4h 5m", list.links[0].url,
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
