// End-to-end checks of the meterwick-widgets command: exit statuses and the
// JSON it prints.

#include <sys/wait.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <map>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "payload/self_report.hpp"
#include "support/payloads.hpp"

namespace mw {
namespace {

using testing::TempDir;

struct Run {
    int status = -1;
    std::string out;
    std::string err;
};

// Runs the built binary with the environment pointing at no container, so a
// test never reads the machine's own data; a run that hangs ends after two
// minutes with status 124.
Run run(const std::string& arguments) {
    const TempDir io;
    const std::string command = "timeout 120 env METERWICK_CONTAINER=/nonexistent/mw '" MW_CLI_PATH "' " + arguments + " >'" +
                                (io / "out").string() + "' 2>'" + (io / "err").string() + "'";
    const int raw = std::system(command.c_str());
    return {WIFEXITED(raw) ? WEXITSTATUS(raw) : -1, testing::readFile(io / "out"), testing::readFile(io / "err")};
}

// What a run that must succeed printed, as JSON.
nlohmann::json succeeded(const std::string& arguments) {
    const auto result = run(arguments);
    EXPECT_EQ(result.status, 0) << arguments << ": " << result.err;
    return nlohmann::json::parse(result.out, nullptr, false);
}

std::string in(const TempDir& container) {
    return "--container '" + container.path().string() + "' ";
}

TEST(Cli, UsageErrorsExitWithStatusTwoAndSayWhy) {
    struct Case {
        const char* arguments;
        const char* message;
    };
    const Case cases[] = {
        {"timeline bogus", "unknown widget kind \"bogus\""},
        {"timeline dashboard --family huge", "accepted: systemLarge, systemExtraLarge"},
        {"timeline focus --set style=fancy", "accepted: classic, enhanced"},
        {"snapshot focus --set colour=red", "accepted: tool, style"},
        {"timeline accounts --set tool=claude", "has no options"},
        {"--now yesterday timeline focus", "--now"},
        {"--now 2025-01-31T14:05:00.5Z placeholder focus", "--now"},
        {"--now yesterday kinds", "is not an ISO 8601 date-time"},  // even where the clock is never read
        {"choices tool --now 2025-01-31", "--now"},
        {"render focus --scale nan --output x.png", "is not a number"},
        // Each used to slip through or say something beside the point.
        {"render focus --scale abc --output x.png", "\"abc\" is not a number"},
        {"render focus --entry 0x1 --output x.png", "is not an entry number"},
        {"render focus --entry -1 --output x.png", "is not an entry number"},
        {"timeline focus --set \"$(printf 'tool=\\377')\"", "is not valid UTF-8"},
        {"frobnicate", "unknown command \"frobnicate\""},
        {"place \"$(printf '\\033[2J')\"", "unknown widget kind \"\\x1B[2J\""},
        // What the command line parser itself refuses.
        {"", "no command given"},
        {"choices everything", "everything not in {tool,provider}"},
        {"lookup tool", "ID is required"},
        {"render focus --scale", "--scale: 1 required"},
    };
    for (const auto& c : cases) {
        const auto result = run(c.arguments);
        EXPECT_EQ(result.status, 2) << c.arguments;
        EXPECT_TRUE(result.out.empty()) << c.arguments;
        EXPECT_NE(result.err.find(c.message), std::string::npos) << c.arguments << ": " << result.err;
        EXPECT_EQ(std::count(result.err.begin(), result.err.end(), '\n'), 1) << c.arguments << ": one line, " << result.err;
        EXPECT_EQ(result.err.find('\x1b'), std::string::npos) << c.arguments << ": a raw escape reached the terminal";
    }
}

TEST(Cli, OutputsNeverTearOrOverwriteWhatWasNotMeantToBe) {
    const TempDir dir;
    // render replaces a link at --output instead of writing through it.
    dir.write("elsewhere.png", "precious");
    std::filesystem::create_symlink(dir / "elsewhere.png", dir / "out.png");
    ASSERT_EQ(run("--now 2025-01-31T14:05:00Z render focus --output '" + (dir / "out.png").string() + "'").status, 0);
    EXPECT_EQ(testing::readFile(dir / "elsewhere.png"), "precious");
    EXPECT_FALSE(std::filesystem::is_symlink(dir / "out.png"));
    EXPECT_EQ(testing::readFile(dir / "out.png").substr(1, 3), "PNG");

    // demo refuses a container that already has a payload unless forced.
    std::filesystem::create_directories(dir / "demo" / "container");
    dir.write("demo/container/widget-payload.json", "{\"mine\": true}");
    const auto refused = run("demo --output '" + (dir / "demo").string() + "'");
    EXPECT_EQ(refused.status, 2);
    EXPECT_NE(refused.err.find("--force"), std::string::npos) << refused.err;
    EXPECT_EQ(testing::readFile(dir / "demo/container/widget-payload.json"), "{\"mine\": true}");
    EXPECT_EQ(run("demo --force --output '" + (dir / "demo").string() + "'").status, 0);
    EXPECT_NE(testing::readFile(dir / "demo/container/widget-payload.json"), "{\"mine\": true}");
}

TEST(Cli, TimelinePrintsEntriesAndWritesTheSelfReport) {
    const TempDir container;
    testing::writePayload(container,
                          testing::payloadOf({testing::tool("claude", 30), testing::tool("codex", 60, "work")},
                                             testing::kNow - 600));
    // The entries' JSON form is the bundle's; here the options and --now get through.
    const auto json =
        succeeded(in(container) + "--now 2025-01-31T14:05:00Z timeline MeterwickFocus --set style=enhanced");
    ASSERT_EQ(json["entries"].size(), 2u);
    EXPECT_EQ(json["reloadAfter"], "2025-01-31T14:15:00Z");
    EXPECT_EQ(json["entries"][0]["style"], "enhanced");
    EXPECT_EQ(json["entries"][0]["resolvedToolID"], "codex:work");
    EXPECT_EQ(json["entries"][1]["date"], "2025-01-31T14:25:00Z");

    const auto report = nlohmann::json::parse(testing::readFile(container / kSelfReportFileName));
    EXPECT_EQ(report["kind"], "focus");
    EXPECT_EQ(report["resolvedToolID"], "codex:work");
}

TEST(Cli, MissingContainerIsAPanelNotAnError) {
    const auto json = succeeded("timeline accounts --container /nonexistent/elsewhere --now 2025-01-31T14:05:00Z");
    ASSERT_EQ(json["entries"].size(), 3u);
    EXPECT_EQ(json["entries"][0]["readStatus"], "noContainer");
    EXPECT_EQ(json["entries"][0]["panel"]["title"], "Can't read widget data");
}

TEST(Cli, ChoicesAndLookup) {
    const TempDir container;
    testing::writePayload(container, testing::payloadOf({testing::tool("claude", 30, "work")}));
    const auto list = succeeded(in(container) + "choices tool");
    ASSERT_EQ(list.size(), 2u);
    EXPECT_EQ(list[1]["id"], "claude:work");
    EXPECT_EQ(succeeded(in(container) + "lookup provider gemini all"),
              nlohmann::json::parse(R"([{"id":"gemini","label":"Gemini"},{"id":"all","label":"All providers"}])"));
}

// Every library the dynamic loader brings in, dlopen included, is named in
// LD_DEBUG's trace; a command that draws nothing must not pull in a
// drawing stack (nor GIO, which only a call to the running host opens).
TEST(Cli, CommandsThatDrawNothingLoadNoDrawingLibrary) {
    const TempDir container, config;
    testing::writePayload(container, testing::payloadOf({testing::tool("claude", 30)}));
    const std::string environment = "XDG_CONFIG_HOME='" + config.path().string() + "' LD_DEBUG=libs ";
    for (const char* command : {"kinds", "placeholder focus", "snapshot accounts", "timeline dashboard",
                                "choices provider", "lookup tool claude", "list", "check", "schema"}) {
        const TempDir io;
        const std::string line = environment + "'" MW_CLI_PATH "' " + in(container) + command + " >/dev/null 2>'" +
                                 (io / "trace").string() + "'";
        EXPECT_EQ(WEXITSTATUS(std::system(line.c_str())), 0) << command;
        const auto trace = testing::readFile(io / "trace");
        EXPECT_NE(trace.find("libc.so"), std::string::npos) << "no loader trace for " << command;
        for (const char* library : {"libcairo", "libpango", "librsvg", "libfontconfig", "libharfbuzz", "libgio",
                                    "libgtk", "libpng"})
            EXPECT_EQ(trace.find(library), std::string::npos) << command << " loads " << library;
    }
}

// The drawing commands run in a second program; the user sees one. Their
// output is checked where render and describe are run below.
TEST(Cli, DrawingCommandsAnswerUnderTheSameName) {
    const auto help = run("render --help");
    EXPECT_EQ(help.status, 0);
    EXPECT_NE(help.out.find("meterwick-widgets render"), std::string::npos) << help.out;
    const auto overview = run("--help");
    for (const char* command : {"timeline", "render", "gallery"})
        EXPECT_NE(overview.out.find(command), std::string::npos) << command;
}

// Names in scripts Inter lacks take faces from the system's fallback list,
// which the drawing program sorts only once a text asks for a face past the
// best one (see app/pango_font_jobs.cpp): such a drawing finishes, and its
// names are set in more than Inter's missing-glyph boxes.
TEST(Cli, NamesInOtherScriptsDrawInFallbackFaces) {
    const TempDir container, out;
    const auto draw = [&](const std::string& slug) {
        testing::writePayload(container, testing::payloadOf({testing::tool("claude", 30, slug)}));
        const auto drawn = run("--now 2025-01-31T14:05:00Z " + in(container) + "describe accounts --family systemMedium");
        EXPECT_EQ(drawn.status, 0) << slug << ": " << drawn.err;
        const auto described = nlohmann::json::parse(drawn.out, nullptr, false);
        for (const auto& node : described["nodes"])
            if (node.value("text", "").find(slug) != std::string::npos) return node["frame"][2].get<double>();
        ADD_FAILURE() << slug << " is not drawn: " << drawn.out.substr(0, 400);
        return 0.0;
    };
    // Arabic from the fallback list is narrower than the boxes Pango draws
    // for characters no face has (unassigned code points), hex digits each.
    EXPECT_LT(draw("\u0639\u0645\u0644"), draw("\u0378\u0378\u0378"));
}

// The gallery paints one image while the one before is encoded on another
// thread, in memory reused from image to image: each file must still be the
// one a render of its own gives, whether drawn first, after a larger image or
// after a smaller one.
TEST(Cli, GalleryImagesAreTheImagesRenderDraws) {
    const TempDir dir;
    const std::string now = "--now 2025-01-31T14:05:00Z ";
    const auto demo = run(now + "demo --output '" + (dir / "demo").string() + "'");
    ASSERT_EQ(demo.status, 0) << demo.err;
    const auto container = "--container '" + (dir / "demo/container").string() + "' ";
    struct Case {
        const char* arguments;
        const char* file;
    };
    for (const auto& c : {Case{"focus --family systemSmall", "focus-systemSmall-light.png"},
                          Case{"accounts --family systemLarge --appearance dark", "accounts-systemLarge-dark.png"},
                          Case{"sparkline --family systemMedium", "sparkline-systemMedium-light.png"}}) {
        const auto png = dir / "render.png";
        const auto drawn = run(now + container + "render " + c.arguments + " --output '" + png.string() + "'");
        ASSERT_EQ(drawn.status, 0) << drawn.err;
        EXPECT_EQ(testing::readFile(png), testing::readFile(dir / "demo" / c.file)) << c.file;
    }
    EXPECT_NE(demo.out.find("sparkline-systemMedium-dark.png\n"), std::string::npos) << demo.out;
}

// check: the account list explained, and the exit status a script can test.
TEST(Cli, CheckExplainsLeftOutToolsAndExitsByWhatItFound) {
    const TempDir container;
    auto work = testing::tool("claude", 30, "work");
    auto idle = testing::tool("codex", 0);
    idle.isConnected = false;
    auto payload = testing::payloadOf({testing::tool("claude"), work, idle, testing::tool("gemini")});
    payload.enabledToolIDs = {"claude", "codex", "cursor"};
    testing::writePayload(container, payload);

    const auto fine = run(in(container) + "check --json");
    EXPECT_EQ(fine.status, 0) << fine.err;
    const auto report = nlohmann::json::parse(fine.out, nullptr, false);
    EXPECT_EQ(report["readStatus"], "ok");
    EXPECT_EQ(report["problems"], nlohmann::json::array());
    EXPECT_EQ(report["enabled"], nlohmann::json::parse(R"(["claude","codex"])"));
    EXPECT_EQ(report["accounts"], nlohmann::json::parse(R"(["claude"])"));
    std::map<std::string, std::string> leftOut;
    for (const auto& tool : report["leftOut"]) leftOut[tool["key"]] = tool["reason"];
    ASSERT_EQ(leftOut.size(), 4u) << report.dump();
    EXPECT_NE(leftOut["claude:work"].find("lists only \"claude\""), std::string::npos);
    EXPECT_NE(leftOut["codex"].find("disconnected"), std::string::npos);
    EXPECT_NE(leftOut["gemini"].find("not listed"), std::string::npos);
    EXPECT_NE(leftOut["cursor"].find("no tool has this key"), std::string::npos);

    container.write("broken.json", R"({"updatedAt":"2025-01-31T14:05:00Z","tools":[{"toolID":"claude"}]})");
    const auto broken = run("check '" + (container / "broken.json").string() + "'");
    EXPECT_EQ(broken.status, 1);
    EXPECT_NE(broken.out.find("/tools/0/displayName: missing required key"), std::string::npos) << broken.out;

    struct Case {
        std::string arguments;
        int status;
        const char* readStatus;
    };
    const Case cases[] = {
        {"check --json", 1, "noContainer"},
        {"check --json " + (container / "absent.json").string(), 1, "missing"},
        {"check --json " + container.path().string(), 1, "unreadable"},
    };
    for (const auto& c : cases) {
        const auto result = run(c.arguments);
        EXPECT_EQ(result.status, c.status) << c.arguments;
        EXPECT_EQ(nlohmann::json::parse(result.out, nullptr, false)["readStatus"], c.readStatus) << c.arguments;
    }
    EXPECT_EQ(run("check a.json b.json").status, 2);
    EXPECT_EQ(run("check --json --bogus").status, 2);
}

}  // namespace
}  // namespace mw
