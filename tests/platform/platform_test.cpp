#include <sys/stat.h>

#include <gtest/gtest.h>

#include "platform/atomic_write.hpp"
#include "platform/bundle_info.hpp"
#include "platform/container.hpp"
#include "platform/environment.hpp"
#include "platform/url.hpp"
#include "support/temp_dir.hpp"

namespace mw {
namespace {

using testing::TempDir;

TEST(ContainerDirectory, FollowsTheVariablesInOrder) {
    TempDir root;
    const auto explicitDir = root / "explicit";
    const auto dataHomeDir = root / "data" / "meterwick" / kAppGroupIdentifier;
    const auto homeDir = root / "home" / ".local" / "share" / "meterwick" / kAppGroupIdentifier;
    for (const auto& dir : {explicitDir, dataHomeDir, homeDir}) std::filesystem::create_directories(dir);

    const std::string explicitText = explicitDir.string(), data = (root / "data").string(),
                      home = (root / "home").string();
    EXPECT_EQ(containerDirectory({explicitText, data, home}), explicitDir);
    EXPECT_EQ(containerDirectory({std::nullopt, data, home}), dataHomeDir);
    EXPECT_EQ(containerDirectory({std::nullopt, std::nullopt, home}), homeDir);
    EXPECT_EQ(containerDirectory({std::nullopt, std::nullopt, std::nullopt}), std::nullopt);
}

TEST(EnvironmentVariable, AnEmptyValueCountsAsUnset) {
    constexpr const char* kName = "MW_PLATFORM_TEST_VARIABLE";
    ::setenv(kName, "", 1);
    EXPECT_EQ(environmentVariable(kName), std::nullopt);
    ::unsetenv(kName);
    EXPECT_EQ(environmentVariable(kName), std::nullopt);
    ::setenv(kName, " x", 1);
    EXPECT_EQ(environmentVariable(kName), " x");
    ::unsetenv(kName);
}

TEST(ContainerDirectory, AMissingDirectoryOrAFileIsNoContainer) {
    TempDir root;
    root.write("file", "x");
    EXPECT_EQ(containerDirectory({(root / "absent").string(), std::nullopt, std::nullopt}), std::nullopt);
    EXPECT_EQ(containerDirectory({(root / "file").string(), std::nullopt, std::nullopt}), std::nullopt);
    // An explicit container that does not exist does not fall through to HOME.
    std::filesystem::create_directories(root / "h" / ".local/share/meterwick" / kAppGroupIdentifier);
    EXPECT_EQ(containerDirectory({(root / "absent").string(), std::nullopt, (root / "h").string()}), std::nullopt);
}

TEST(WriteFileAtomically, WritesTheWholeFileWithMode0644) {
    TempDir dir;
    ASSERT_TRUE(writeFileAtomically(dir / "a.json", "first"));
    ASSERT_TRUE(writeFileAtomically(dir / "a.json", "second, longer"));
    EXPECT_EQ(testing::readFile(dir / "a.json"), "second, longer");
    struct stat info {};
    ASSERT_EQ(::stat((dir / "a.json").c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 0777, 0644u);
    // Nothing is left behind but the target.
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir.path()), {}), 1);
}

TEST(WriteFileAtomically, ReplacesALinkAtTheTargetInsteadOfWritingThroughIt) {
    TempDir dir;
    dir.write("victim", "keep me");
    std::filesystem::create_symlink(dir / "victim", dir / "report.json");
    ASSERT_TRUE(writeFileAtomically(dir / "report.json", "new"));
    EXPECT_EQ(testing::readFile(dir / "victim"), "keep me");
    EXPECT_FALSE(std::filesystem::is_symlink(dir / "report.json"));
    EXPECT_EQ(testing::readFile(dir / "report.json"), "new");
}

TEST(WriteFileAtomically, FailsCleanlyWhenTheDirectoryIsMissing) {
    TempDir dir;
    EXPECT_FALSE(writeFileAtomically(dir / "absent" / "a.json", "x"));
}

TEST(EscapeURLPath, KeepsPathCharactersAndEscapesTheRest) {
    struct Case {
        const char* in;
        const char* out;
    };
    for (const auto& c : {Case{"claude", "claude"}, Case{"claude:work", "claude:work"},
                          Case{"a@b/c-d_e.f~g!$&'()*+,;=", "a@b/c-d_e.f~g!$&'()*+,;="},
                          Case{"my team", "my%20team"}, Case{"a?b#c%d", "a%3Fb%23c%25d"},
                          Case{"café", "caf%C3%A9"}, Case{"[x]", "%5Bx%5D"}})
        EXPECT_EQ(escapeURLPath(c.in), c.out) << c.in;
}

// Every key a widget links survives the round trip, and no key links the
// app itself; what is not ours, or is malformed, is unknown rather than a guess.
TEST(ToolURL, ParsesWhatItBuilds) {
    for (const char* key : {"claude", "codex-cli:work", "my team", "café", "a?b#c%d", "[x]/y"})
        EXPECT_EQ(parseAppURL(toolURL(key)), (AppLink{AppLink::Kind::tool, key})) << key;
    EXPECT_EQ(toolURL(""), "meterwick://open");
    const AppLink open{AppLink::Kind::open, {}};
    const AppLink unknown{};
    struct Case {
        const char* url;
        AppLink link;
    };
    for (const auto& c : {Case{"meterwick://open", open}, Case{"METERWICK://Open/", open},
                          Case{"meterwick://tool/claude?from=bar#x", {AppLink::Kind::tool, "claude"}},
                          Case{"meterwick://tool/", unknown}, Case{"meterwick://tool", unknown},
                          Case{"meterwick://tool/a%2", unknown}, Case{"meterwick://tool/%zz", unknown},
                          Case{"meterwick://settings", unknown}, Case{"meterwick://open/extra", unknown},
                          Case{"https://tool/claude", unknown}, Case{"", unknown}})
        EXPECT_EQ(parseAppURL(c.url), c.link) << c.url;
}

TEST(BundleInfo, DescribesTheBinaryHoldingTheCode) {
    static const int marker = 0;
    const auto info = bundleInfoContaining(&marker);
    EXPECT_EQ(info.version, std::string(MW_EXPECTED_VERSION));
    EXPECT_FALSE(info.path.empty());
    EXPECT_TRUE(std::filesystem::is_directory(info.path));
}

}  // namespace
}  // namespace mw
