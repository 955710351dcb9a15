// doctor: which facts are problems and what each tells the user to do, and
// the command run on an empty container.

#include <sys/wait.h>

#include <cstdlib>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "app/doctor_report.hpp"
#include "support/payloads.hpp"

namespace mw {
namespace {

using namespace cli;
using testing::kNow;

DoctorFacts healthy() {
    DoctorFacts f;
    f.now = kNow;
    f.container = {std::filesystem::path("/c"), ContainerSource::dataHome};
    f.containerExists = true;
    f.readStatus = ReadStatus::ok;
    f.updatedAt = kNow - 300;
    f.tools = 3;
    f.enabledTools = 2;
    f.accounts = 2;
    f.selfReport = R"({"recordedAt": "2025-01-31T14:00:00Z", "kind": "focus", "payloadReadStatus": "ok",
                       "bundleVersion": "0.1.0"})";
    f.host = HostState::running;
    f.hostStatus = {{"widgets", "1"}};
    f.placementsFile = "/w.json";
    f.placementsStatus = "ok";
    f.placed = {{"focus-1", "MeterwickFocus", "systemSmall", ""}};
    f.wayland = true;
    f.layerShell = true;
    f.portalColorScheme = "dark";
    f.urlHandler = "app.meterwick.WidgetHost.desktop";
    f.unit = UnitState::enabled;
    return f;
}

std::vector<Finding> problems(const DoctorFacts& facts) {
    std::vector<Finding> out;
    for (auto& f : diagnose(facts))
        if (!f.ok) out.push_back(f);
    return out;
}

TEST(Doctor, EachProblemNamesItsAreaAndWhatToDo) {
    EXPECT_TRUE(problems(healthy()).empty()) << humanReport(diagnose(healthy()));

    struct Case {
        const char* name;
        void (*change)(DoctorFacts&);
        const char* area;
        const char* fix;  // part of what to do
    };
    const Case cases[] = {
        {"no variable names a container",
         [](DoctorFacts& f) {
             f.container = {};
             f.containerExists = false;
             f.readStatus = ReadStatus::noContainer;
         },
         "container", "set METERWICK_CONTAINER"},
        {"payload missing", [](DoctorFacts& f) { f.readStatus = ReadStatus::missing; }, "payload",
         "Open the app once"},
        {"payload undecodable", [](DoctorFacts& f) { f.readStatus = ReadStatus::decodeFailed; }, "payload",
         "Update Meterwick"},
        {"stale by exactly the stale age", [](DoctorFacts& f) { f.updatedAt = kNow - 1800; }, "payload",
         "start Meterwick"},
        {"everything hidden", [](DoctorFacts& f) { f.enabledTools = 0, f.accounts = 0; }, "payload",
         "Turn one back on"},
        {"enabled but none connected", [](DoctorFacts& f) { f.accounts = 0; }, "payload", "Connect a provider"},
        {"the host last read a broken file",
         [](DoctorFacts& f) { f.selfReport = R"({"payloadReadStatus": "unreadable"})"; }, "selfReport", "use Repair"},
        {"no host", [](DoctorFacts& f) { f.host = HostState::notRunning; }, "host", "systemctl --user start"},
        {"nothing placed", [](DoctorFacts& f) { f.placed.clear(); }, "widgets", "meterwick-widgets place focus"},
        {"a placement this build cannot show",
         [](DoctorFacts& f) { f.placed.push_back({"x-1", "MeterwickGone", "systemSmall", "unknown kind"}); },
         "widgets", "meterwick-widgets remove x-1"},
        {"Wayland without layer-shell or XWayland", [](DoctorFacts& f) { f.layerShell = false; }, "session",
         "wlr-layer-shell"},
        {"no settings portal", [](DoctorFacts& f) { f.portalColorScheme.reset(); }, "portal", "xdg-desktop-portal"},
        {"unit installed, not enabled", [](DoctorFacts& f) { f.unit = UnitState::installed; }, "autostart",
         "systemctl --user enable"},
    };
    for (const auto& c : cases) {
        DoctorFacts facts = healthy();
        c.change(facts);
        const auto found = problems(facts);
        ASSERT_EQ(found.size(), 1u) << c.name << "\n" << humanReport(diagnose(facts));
        EXPECT_EQ(found[0].area, c.area) << c.name;
        EXPECT_NE(found[0].fix.find(c.fix), std::string::npos) << c.name << ": " << found[0].fix;
    }

    // Either autostart mechanism will do; XWayland stands in for layer-shell;
    // the host follows links when no other application does.
    DoctorFacts facts = healthy();
    facts.urlHandler.reset();
    facts.unit = UnitState::absent;
    facts.autostartEntry = "/etc/xdg/autostart/app.meterwick.WidgetHost.desktop";
    facts.layerShell = false;
    facts.x11 = true;
    EXPECT_TRUE(problems(facts).empty()) << humanReport(diagnose(facts));
}

TEST(Doctor, ExplainsAnEmptyContainerWithoutTouchingAnything) {
    const testing::TempDir home;
    std::filesystem::create_directories(home / "c");
    const std::string command = "env -i HOME='" + home.path().string() + "' '" MW_CLI_PATH "' --container '" +
                                (home / "c").string() + "' doctor --json >'" + (home / "out").string() + "'";
    const int raw = std::system(command.c_str());
    ASSERT_TRUE(WIFEXITED(raw) && WEXITSTATUS(raw) == 0);
    const auto report = nlohmann::json::parse(testing::readFile(home / "out"), nullptr, false);
    ASSERT_TRUE(report.is_object());
    EXPECT_EQ(report["container"]["source"], "--container");
    EXPECT_EQ(report["payload"]["status"], "missing");
    EXPECT_EQ(report["host"]["state"], "noBus");
    std::set<std::string> areas;
    for (const auto& problem : report["problems"]) {
        areas.insert(problem["area"].get<std::string>());
        EXPECT_FALSE(problem["fix"].get<std::string>().empty()) << problem;
    }
    for (const char* area : {"payload", "selfReport", "host", "widgets", "session", "autostart"})
        EXPECT_TRUE(areas.contains(area)) << area << " in " << report["problems"];
    // Read only: nothing was created in the container or the configuration.
    EXPECT_TRUE(std::filesystem::is_empty(home / "c"));
    EXPECT_FALSE(std::filesystem::exists(home / ".config"));
}

}  // namespace
}  // namespace mw
