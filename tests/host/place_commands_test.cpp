// The place/list/edit/remove/reload commands against a private
// configuration directory, with no session bus (so no host is told).

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdlib>
#include <nlohmann/json.hpp>

#include "host/placements.hpp"
#include "support/temp_dir.hpp"

namespace mw {
namespace {

using testing::readFile;
using testing::TempDir;

struct CommandRun {
    int status = -1;
    nlohmann::json out;
    std::string err;
};

class PlaceCommands : public ::testing::Test {
  protected:
    CommandRun run(const std::string& arguments) const {
        const TempDir io;
        const std::string command = "env -u DBUS_SESSION_BUS_ADDRESS XDG_RUNTIME_DIR=/nonexistent XDG_CONFIG_HOME='" +
                                    config_.path().string() +
                                    "' METERWICK_CONTAINER=/nonexistent/mw '" MW_CLI_PATH "' " + arguments + " >'" +
                                    (io / "out").string() + "' 2>'" + (io / "err").string() + "'";
        const int raw = std::system(command.c_str());
        const auto out = readFile(io / "out");
        return {WIFEXITED(raw) ? WEXITSTATUS(raw) : -1,
                out.empty() ? nlohmann::json() : nlohmann::json::parse(out, nullptr, false), readFile(io / "err")};
    }
    std::filesystem::path storeFile() const { return config_ / "meterwick" / "widgets.json"; }
    std::vector<PlacedWidget> stored() const { return loadPlacements(storeFile(), Date{}).widgets; }

    TempDir config_;
};

TEST_F(PlaceCommands, PlaceListEditRemove) {
    const auto focus = run("place focus --set tool=claude:work --at 10,-20");
    ASSERT_EQ(focus.status, 0) << focus.err;
    // The family defaults to the widget's first.
    EXPECT_EQ(focus.out, nlohmann::json::parse(R"({"id": "focus-1", "kind": "MeterwickFocus", "family": "systemSmall",
        "parameters": {"tool": "claude:work"}, "position": {"x": 10, "y": -20}})"));

    const auto limit = run("place MeterwickAccountsByLimit --family systemLarge --set limit=fiveHour");
    ASSERT_EQ(limit.status, 0) << limit.err;
    EXPECT_EQ(limit.out["parameters"],
              (nlohmann::json{{"limit", "fiveHour"}, {"order", "mostRoom"}, {"percent", "left"}}))
        << "the intent's defaults are stored alongside what was set";
    EXPECT_EQ(run("place focus").out["id"], "focus-2");

    const auto listed = run("list");
    ASSERT_EQ(listed.status, 0);
    ASSERT_EQ(listed.out.size(), 3u);
    EXPECT_EQ(listed.out[1]["id"], "accounts-limit-1");

    const auto edited = run("edit focus-1 --set style=enhanced --at 5,5 --monitor DP-2");
    ASSERT_EQ(edited.status, 0) << edited.err;
    const auto widgets = stored();
    ASSERT_EQ(widgets.size(), 3u);
    EXPECT_EQ(widgets[0].parameters, (IntentParameters{{"tool", "claude:work"}, {"style", "enhanced"}}));
    EXPECT_EQ(widgets[0].position, (WidgetPosition{5, 5}));
    EXPECT_EQ(widgets[0].monitor, "DP-2");
    EXPECT_EQ(edited.out["monitor"], "DP-2");
    ASSERT_EQ(run("edit focus-1 --monitor ''").status, 0);
    EXPECT_EQ(stored()[0].monitor, std::nullopt) << "an empty name returns it to the primary monitor";
    EXPECT_EQ(stored()[0].position, (WidgetPosition{5, 5}));

    ASSERT_EQ(run("edit accounts-limit-1 --family systemMedium").status, 0);
    EXPECT_EQ(stored()[1].family, "systemMedium");

    ASSERT_EQ(run("remove focus-2").status, 0);
    EXPECT_EQ(stored().size(), 2u);
    EXPECT_EQ(findPlacement(stored(), "focus-2"), nullptr);
}

// Usage errors exit with status 2; a reload with no host to tell, with 1.
TEST_F(PlaceCommands, FailuresExitNonZeroSayWhyAndChangeNothing) {
    ASSERT_EQ(run("place accounts").status, 0);
    const auto before = readFile(storeFile());
    struct Case {
        const char* arguments;
        int status;
        const char* message;
    };
    const Case cases[] = {
        {"place gadget", 2, "unknown widget kind \"gadget\""},
        {"place focus --family systemLarge", 2, "accepted: systemSmall"},
        {"place accounts --set tool=claude", 2, "has no options"},
        {"place focus --at 10", 2, "--at: expected X,Y"},
        {"place focus --monitor \"$(printf 'DP\\t1')\"", 2, "--monitor: a monitor name has no control characters"},
        {"edit nothing-1 --set style=classic", 2, "no placed widget \"nothing-1\"; placed: accounts-1"},
        {"edit accounts-1 --family systemSmall", 2, "accepted: systemMedium, systemLarge, systemExtraLarge"},
        {"remove focus-9", 2, "no placed widget \"focus-9\""},
        {"reload gadget", 2, "unknown widget kind \"gadget\""},
        {"remove", 2, ""},
        {"reload focus", 1, "no Meterwick widget host is running"},
    };
    for (const auto& c : cases) {
        const auto result = run(c.arguments);
        EXPECT_EQ(result.status, c.status) << c.arguments;
        EXPECT_NE(result.err.find(c.message), std::string::npos) << c.arguments << ": " << result.err;
    }
    EXPECT_EQ(readFile(storeFile()), before);
}

TEST_F(PlaceCommands, ACorruptStoreIsReportedThenKeptAsideWhenSavedOver) {
    std::filesystem::create_directories(storeFile().parent_path());
    config_.write("meterwick/widgets.json", "{\"widgets\": 7}");
    const auto listed = run("list");
    EXPECT_EQ(listed.status, 0);
    EXPECT_EQ(listed.out, nlohmann::json::array());
    EXPECT_NE(listed.err.find("\"widgets\" must be an array"), std::string::npos) << listed.err;
    EXPECT_EQ(readFile(storeFile()), "{\"widgets\": 7}") << "listing does not move it (an editor may be mid-save)";

    const auto placed = run("place focus");
    ASSERT_EQ(placed.status, 0);
    EXPECT_NE(placed.err.find("kept as "), std::string::npos) << placed.err;
    EXPECT_EQ(stored().size(), 1u);
}

TEST_F(PlaceCommands, WidgetsThisVersionDoesNotKnowAreListedWithTheProblemAndKept) {
    std::filesystem::create_directories(storeFile().parent_path());
    config_.write("meterwick/widgets.json",
                  R"({"version": 1, "widgets": [{"id": "w-1", "kind": "MeterwickFuture", "family": "systemSmall"}]})");
    const auto listed = run("list");
    ASSERT_EQ(listed.status, 0);
    ASSERT_EQ(listed.out.size(), 1u);
    EXPECT_EQ(listed.out[0]["problem"], "unknown widget kind \"MeterwickFuture\"");
    EXPECT_EQ(run("edit w-1 --set style=classic").status, 2);

    ASSERT_EQ(run("place focus").status, 0);
    const auto widgets = stored();
    ASSERT_EQ(widgets.size(), 2u);
    EXPECT_EQ(widgets[0].kind, "MeterwickFuture") << "an unknown entry survives a rewrite";
    ASSERT_EQ(run("remove w-1").status, 0);
    EXPECT_EQ(stored().size(), 1u);
}

}  // namespace
}  // namespace mw

namespace mw {
namespace {

TEST_F(PlaceCommands, TwoScriptsPlacingAtOnceLoseNothing) {
    const std::string loop = "for i in $(seq 12); do env -u DBUS_SESSION_BUS_ADDRESS XDG_RUNTIME_DIR=/nonexistent "
                             "XDG_CONFIG_HOME='" + config_.path().string() +
                             "' '" MW_CLI_PATH "' place focus >/dev/null 2>&1; done";
    const std::string both = "(" + loop + ") & (" + loop + ") & wait";
    ASSERT_EQ(std::system(both.c_str()), 0);
    EXPECT_EQ(stored().size(), 24u);
}

}  // namespace
}  // namespace mw
