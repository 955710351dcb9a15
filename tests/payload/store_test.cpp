#include "payload/store.hpp"

#include <sys/stat.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "support/temp_dir.hpp"

namespace mw {
namespace {

using testing::TempDir;

TEST(WidgetStore, ReportsEachStatusInOrder) {
    struct Case {
        const char* name;
        std::function<void(const TempDir&)> prepare;
        ReadStatus expected;
    };
    const Case cases[] = {
        {"no file", [](const TempDir&) {}, ReadStatus::missing},
        {"directory in its place",
         [](const TempDir& d) { std::filesystem::create_directory(d / kPayloadFileName); }, ReadStatus::unreadable},
        {"dangling link", [](const TempDir& d) { std::filesystem::create_symlink(d / "gone", d / kPayloadFileName); },
         ReadStatus::missing},
        // Which documents fail to decode is the codec's; one stands for them.
        {"empty file", [](const TempDir& d) { d.write(kPayloadFileName, ""); }, ReadStatus::decodeFailed},
        {"empty object", [](const TempDir& d) { d.write(kPayloadFileName, "{}"); }, ReadStatus::ok},
        // Files that hung the reader or filled memory before it read only
        // regular files of bounded size. A hang is caught by the test's
        // timeout rather than timed here.
        {"FIFO with no writer", [](const TempDir& d) { ::mkfifo((d / kPayloadFileName).c_str(), 0644); },
         ReadStatus::unreadable},
        {"link to an endless device",
         [](const TempDir& d) { std::filesystem::create_symlink("/dev/zero", d / kPayloadFileName); },
         ReadStatus::unreadable},
        {"sparse file past the cap",
         [](const TempDir& d) {
             d.write(kPayloadFileName, "{}");
             std::filesystem::resize_file(d / kPayloadFileName, 2ull << 30);
         },
         ReadStatus::unreadable},
        {"one byte past the cap",
         [](const TempDir& d) {
             d.write(kPayloadFileName, "{}");
             std::filesystem::resize_file(d / kPayloadFileName, kPayloadMaxBytes + 1);
         },
         ReadStatus::unreadable},
        {"exactly at the cap is read",
         [](const TempDir& d) { d.write(kPayloadFileName, "{}" + std::string(kPayloadMaxBytes - 2, ' ')); },
         ReadStatus::ok},
    };
    for (const auto& c : cases) {
        TempDir dir;
        c.prepare(dir);
        const auto result = WidgetStore::load(dir.path());
        EXPECT_EQ(result.status, c.expected) << c.name;
        EXPECT_EQ(result.payload, emptyPayload()) << c.name;
    }
}

TEST(WidgetStore, UnreadableWhenPermissionIsDenied) {
    if (::geteuid() == 0) GTEST_SKIP() << "root reads every file";
    TempDir dir;
    dir.write(kPayloadFileName, "{}");
    ::chmod((dir / kPayloadFileName).c_str(), 0);
    EXPECT_EQ(WidgetStore::load(dir.path()).status, ReadStatus::unreadable);
}

TEST(WidgetStore, EveryLoadSeesTheFileAsItIsNow) {
    TempDir dir;
    dir.write(kPayloadFileName, R"({"updatedAt":"2025-01-31T14:05:00Z"})");
    const auto first = WidgetStore::load(dir.path());
    dir.write("next.json", R"({"updatedAt":"2025-01-31T15:05:00Z","showRemaining":true})");
    std::filesystem::rename(dir / "next.json", dir / kPayloadFileName);
    const auto second = WidgetStore::load(dir.path());
    ASSERT_EQ(first.status, ReadStatus::ok);
    ASSERT_EQ(second.status, ReadStatus::ok);
    EXPECT_EQ(second.payload.updatedAt - first.payload.updatedAt, 3600);
    EXPECT_TRUE(second.payload.showRemaining);
}

}  // namespace
}  // namespace mw
