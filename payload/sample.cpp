#include "payload/sample.hpp"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace mw {
namespace {

constexpr double kMinute = 60, kHour = 3600, kDay = 86400;
constexpr double kSession = 5 * kHour, kWeek = 7 * kDay;

WidgetUsageWindow window(const char* id, const char* label, double used, Date reset, double duration) {
    return {id, label, used, reset, duration};
}

struct Account {
    const char* toolID;
    const char* slug;  // nullptr: the tool's main account
    const char* displayName;
    const char* compactLabel;
    const char* brandHex;
    double sessionUsed, sessionResetIn;  // percent, seconds from now
    double weekUsed, weekResetIn;
    std::int64_t dangerLevel;
};

WidgetToolSnapshot snapshot(const Account& a, Date now) {
    WidgetToolSnapshot s;
    s.toolID = a.toolID;
    if (a.slug) s.accountSlug = a.slug;
    s.displayName = a.displayName;
    s.compactLabel = a.compactLabel;
    s.isConnected = true;
    s.usagePercent = a.sessionUsed;
    s.isUnderRate = a.sessionUsed < 50;
    s.resetAt = now + a.sessionResetIn;
    s.dangerLevel = a.dangerLevel;
    char text[32];
    std::snprintf(text, sizeof text, "%d%%", static_cast<int>(a.sessionUsed));
    s.menuBarText = text;
    s.menuBarDelta = a.sessionUsed > 60 ? "+8%" : "-4%";
    s.brandHex = a.brandHex;
    s.rankPercent = std::max(a.sessionUsed, a.weekUsed);
    s.windows = std::vector<WidgetUsageWindow>{
        window("session", "5h", a.sessionUsed, now + a.sessionResetIn, kSession),
        window("weekly", "Week", a.weekUsed, now + a.weekResetIn, kWeek),
    };
    return s;
}

std::vector<SparklinePoint> curve(Date now, double hours, double phase, double scale) {
    std::vector<SparklinePoint> points;
    for (double t = -hours * kHour; t <= 0; t += 5 * kMinute) {
        const double x = (t / kHour) + phase;
        points.push_back({now + t, scale * (std::sin(x * 1.3) * 0.7 + std::sin(x * 3.1) * 0.3)});
    }
    return points;
}

std::string dayText(Date date) { return formatISO8601(date).substr(0, 10); }

WidgetDashboard dashboard(Date now, const char* plan, double session, double week, double seed, bool tokens) {
    WidgetDashboard d;
    d.subscriptionType = plan;
    d.cards = {
        {"Session", "gauge", session, "Resets in 2h 10m", "+6% vs pace", session > 60, "Runs out in 1h 40m",
         session > 85 ? 3 : session > 70 ? 2 : 1, false, now + 2 * kHour + 10 * kMinute},
        {"Weekly", "calendar", week, "Resets Thu 09:00", "-3% vs pace", false, std::nullopt,
         week > 85 ? 3 : week > 70 ? 2 : 1, false, now + 3 * kDay},
        {"Opus", "sparkles", 12, "Resets Thu 09:00", std::nullopt, false, std::nullopt, 0, true, std::nullopt},
    };
    for (int i = 29; i >= 0; --i) {
        const double wave = 45 + 35 * std::sin(seed + i * 0.7) * std::cos(i * 0.23);
        d.daily.push_back({dayText(now - i * kDay), std::clamp(wave, 3.0, 100.0),
                           static_cast<std::int64_t>(2 + (i * 7 + static_cast<int>(seed * 10)) % 9), wave * 1.8});
    }
    if (tokens) {
        d.tokens = WidgetTokenSummary{1'284'310, 212'774, 8'930'112, 14.37, 31'877'402, 5'120'965, 220'411'870,
                                      402.18, "claude-sonnet-4-5",
                                      {{"claude-sonnet-4-5", 29'400'118}, {"claude-opus-4-1", 2'477'284}}};
    }
    d.lastUpdated = now - 2 * kMinute;
    d.nextRefreshAt = now + 3 * kMinute;
    d.lastActivityAt = now - 6 * kMinute;
    d.isRateLimited = false;
    return d;
}

}  // namespace

WidgetPayload samplePayload(Date now) {
    static const Account accounts[] = {
        {"claude", nullptr, "Claude · Personal", "Claude", "D97757", 62, 2 * kHour + 10 * kMinute, 48, 3 * kDay, 2},
        {"codex", nullptr, "Codex", "Codex", "10A37F", 18, 4 * kHour + 5 * kMinute, 71, 1 * kDay + 6 * kHour, 1},
        {"claude", "work", "Claude · Work", "Claude W", "D97757", 91, 40 * kMinute, 77, 5 * kDay, 3},
        {"copilot", nullptr, "Copilot", "Copilot", "6E40C9", 34, 3 * kHour, 22, 4 * kDay + 2 * kHour, 1},
        {"gemini", nullptr, "Gemini", "Gemini", "4285F4", 8, 4 * kHour + 40 * kMinute, 12, 6 * kDay, 0},
        {"antigravity", nullptr, "Antigravity", "Antigrav", "34A853", 47, 1 * kHour + 15 * kMinute, 39, 2 * kDay, 1},
        {"opencode", nullptr, "OpenCode · Team", "OpenCode", "FF8A4C", 55, 2 * kHour + 50 * kMinute, 64, 3 * kDay, 1},
    };

    WidgetPayload p;
    p.updatedAt = now - 90;
    for (const auto& a : accounts) {
        p.tools.push_back(snapshot(a, now));
        p.enabledToolIDs.push_back(toolKey(p.tools.back()));
    }

    // Cursor counts requests, not a quota percentage.
    WidgetToolSnapshot cursor;
    cursor.toolID = "cursor";
    cursor.displayName = "Cursor";
    cursor.compactLabel = "Cursor";
    cursor.isConnected = true;
    cursor.usagePercent = 0;
    cursor.dangerLevel = 0;
    cursor.menuBarText = "$18.40";
    cursor.menuBarDelta = "";
    cursor.brandHex = "00B2FF";
    cursor.hasQuotaHeadline = false;
    cursor.forecastLabel = "$41 by month end";
    cursor.meters = std::vector<WidgetMeter>{
        {"spend", "Spend", "currency", "$18.40", std::nullopt, now + 9 * kDay, true, false, "this month"}};
    auto& days = cursor.dailyValues.emplace();
    for (int i = 6; i >= 0; --i) days.push_back({dayText(now - i * kDay), 1.5 + i * 0.9, 40 + i * 11, 120'000 + i * 9'000});
    p.tools.insert(p.tools.begin() + 3, cursor);
    p.enabledToolIDs.insert(p.enabledToolIDs.begin() + 3, "cursor");

    p.sparklines["claude"] = curve(now, 4, 0.4, 14);
    p.sparklines["claude:work"] = curve(now, 3, 1.7, 22);
    p.sparklines["codex"] = curve(now, 4.5, 2.9, -9);
    p.sparklines["copilot"] = curve(now, 2, 0.1, 6);
    p.sparklines["antigravity"] = curve(now, 5, 4.2, 11);
    p.primarySparklineToolID = "claude";

    p.dashboards["claude"] = dashboard(now, "Max 5x", 62, 48, 0.3, true);
    p.dashboards["claude:work"] = dashboard(now, "Team", 91, 77, 1.1, true);
    p.dashboards["codex"] = dashboard(now, "Plus", 18, 71, 2.2, false);
    p.dashboards["copilot"] = dashboard(now, "Pro", 34, 22, 3.3, false);
    p.showRemaining = false;
    return p;
}

}  // namespace mw
