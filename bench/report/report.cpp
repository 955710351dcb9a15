// The benchmark report: runs the Google Benchmark programs, times whole
// `meterwick-widgets` processes, measures the desktop host's memory, and
// prints one table in which every measurement stands next to its floor (what
// the same job costs at the least) and the ratio of the two.
//
//   mw_bench_report [--quick] [--build DIR] [--source DIR] [--runs N] [--no-host]

#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>
#include <nlohmann/json.hpp>
#include <optional>
#include <sstream>
#include <string>
#include <tuple>
#include <vector>

#include "bench/report/table.hpp"
#include "payload/codec.hpp"
#include "payload/sample.hpp"
#include "payload/store.hpp"
#include "platform/clock.hpp"
#include "platform/date.hpp"

extern char** environ;

namespace mw::bench {
namespace {

namespace fs = std::filesystem;

struct Settings {
    fs::path build = MW_BENCH_BUILD_DIR;
    fs::path source = MW_BENCH_SOURCE_DIR;
    bool quick = false;
    bool host = true;
    int runs = 21;
};

// ---- child processes ------------------------------------------------------

struct ChildResult {
    int status = -1;      // exit status, or -1 when it did not exit normally
    double wallMS = 0;    // spawn to reaped
    double maxRSSKB = 0;  // the child's peak resident memory
    double cpuMS = 0;     // user + system time of the child
};

// Runs `argv` with stdout to `out` (or /dev/null) and stderr to /dev/null.
std::optional<ChildResult> runChild(const std::vector<std::string>& args, const fs::path& out = "/dev/null") {
    std::vector<char*> argv;
    for (const auto& a : args) argv.push_back(const_cast<char*>(a.c_str()));
    argv.push_back(nullptr);

    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, out.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);

    const auto start = std::chrono::steady_clock::now();
    pid_t pid = 0;
    const int error = posix_spawnp(&pid, argv[0], &actions, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (error != 0) return std::nullopt;

    int status = 0;
    rusage usage{};
    while (wait4(pid, &status, 0, &usage) < 0)
        if (errno != EINTR) return std::nullopt;
    const auto end = std::chrono::steady_clock::now();
    const auto ms = [](const timeval& t) { return static_cast<double>(t.tv_sec) * 1e3 + t.tv_usec / 1e3; };
    return ChildResult{WIFEXITED(status) ? WEXITSTATUS(status) : -1,
                       std::chrono::duration<double, std::milli>(end - start).count(),
                       static_cast<double>(usage.ru_maxrss), ms(usage.ru_utime) + ms(usage.ru_stime)};
}

struct ProcessFigures {
    std::optional<double> wallMS;    // median over the runs
    std::optional<double> maxRSSKB;  // median over the runs
    std::optional<double> cpuMS;     // median over the runs: what a busy machine does not inflate
};

// The programs run in turn, `runs` rounds of one run each after two rounds
// to warm up, so that a subject and its floor see the same machine: on a
// shared host the speed drifts over a minute by more than the differences
// measured. The median of each; nothing for a program that fails.
std::vector<ProcessFigures> timeAlternately(const std::vector<std::vector<std::string>>& programs, int runs) {
    std::vector<ProcessFigures> figures(programs.size());
    std::vector<std::array<std::vector<double>, 3>> samples(programs.size());  // wall, RSS, CPU
    std::vector<bool> failed(programs.size(), false);
    for (int round = 0; round < runs + 2; ++round) {
        for (std::size_t p = 0; p < programs.size(); ++p) {
            if (failed[p]) continue;
            const auto r = runChild(programs[p]);
            if (!r || r->status != 0) {
                std::fprintf(stderr, "  %s failed\n", programs[p].front().c_str());
                failed[p] = true;
                continue;
            }
            if (round < 2) continue;
            samples[p][0].push_back(r->wallMS);
            samples[p][1].push_back(r->maxRSSKB);
            samples[p][2].push_back(r->cpuMS);
        }
    }
    for (std::size_t p = 0; p < programs.size(); ++p)
        if (!failed[p]) figures[p] = {median(samples[p][0]), median(samples[p][1]), median(samples[p][2])};
    return figures;
}

// A few warm-up runs (page cache, fontconfig's cache), then the median of
// `runs`. Nothing when the program fails.
ProcessFigures timeProcess(const std::vector<std::string>& args, int runs) {
    return timeAlternately({args}, runs).front();
}

// ---- Google Benchmark results ---------------------------------------------

// Time per iteration in microseconds by run name ("BM_Decode/10"). With
// repetitions, the median; CPU time, since the programs are single-threaded
// and the machine may be busy with other work.
using BenchTimes = std::map<std::string, double>;

double toMicroseconds(double value, const std::string& unit) {
    if (unit == "ns") return value / 1000;
    if (unit == "ms") return value * 1000;
    if (unit == "s") return value * 1e6;
    return value;
}

BenchTimes readBenchmarkJSON(const fs::path& file) {
    BenchTimes times;
    std::ifstream in(file);
    const auto doc = nlohmann::json::parse(in, nullptr, false);
    if (doc.is_discarded() || !doc.contains("benchmarks")) return times;
    std::map<std::string, double> medians;
    for (const auto& b : doc["benchmarks"]) {
        const std::string name = b.value("run_name", b.value("name", ""));
        const double us = toMicroseconds(b.value("cpu_time", 0.0), b.value("time_unit", "ns"));
        if (b.value("run_type", "") == "aggregate") {
            if (b.value("aggregate_name", "") == "median") medians[name] = us;
        } else if (!times.contains(name)) {
            times[name] = us;  // the first repetition, until a median replaces it
        }
    }
    for (const auto& [name, us] : medians) times[name] = us;
    return times;
}

BenchTimes runBenchmarks(const Settings& settings, const fs::path& program, const fs::path& scratch,
                         const std::vector<std::string>& extra = {}) {
    if (!fs::exists(program)) {
        std::fprintf(stderr, "  %s is not built\n", program.c_str());
        return {};
    }
    const fs::path out = scratch / (program.filename().string() + ".json");
    std::vector<std::string> args{program.string(), "--benchmark_out=" + out.string(), "--benchmark_out_format=json"};
    args.insert(args.end(), extra.begin(), extra.end());
    if (settings.quick) {
        args.push_back("--benchmark_min_time=0.02");
    } else {
        args.push_back("--benchmark_min_time=0.2");
        args.push_back("--benchmark_repetitions=3");
        args.push_back("--benchmark_report_aggregates_only=true");
    }
    const auto r = runChild(args);
    if (!r || r->status != 0) std::fprintf(stderr, "  %s failed\n", program.c_str());
    return readBenchmarkJSON(out);
}

std::optional<double> lookup(const BenchTimes& times, const std::string& name, double divisor = 1) {
    if (const auto it = times.find(name); it != times.end()) return it->second / divisor;
    return std::nullopt;
}

std::optional<double> kbToMB(std::optional<double> kb) {
    if (!kb) return std::nullopt;
    return *kb / 1024;
}

// ---- the host -------------------------------------------------------------

// "key value" lines a script under bench/host prints; exit status 77 means
// what it needs is not installed.
std::map<std::string, double> measureByScript(const fs::path& script, const std::vector<std::string>& arguments,
                                              const fs::path& out) {
    std::map<std::string, double> values;
    std::vector<std::string> args{"bash", script.string()};
    args.insert(args.end(), arguments.begin(), arguments.end());
    const auto r = runChild(args, out);
    if (!r || (r->status != 0 && r->status != 77)) std::fprintf(stderr, "  %s failed\n", script.c_str());
    if (r && r->status == 77) std::fprintf(stderr, "  %s: a program it needs is missing\n", script.c_str());
    std::ifstream in(out);
    std::string key;
    double value = 0;
    while (in >> key >> value) values[key] = value;
    return values;
}

std::map<std::string, double> measureHost(const Settings& settings, const fs::path& scratch) {
    auto values = measureByScript(settings.source / "bench/host/rss.sh",
                                  {settings.build.string(), settings.quick ? "2" : "10"}, scratch / "host.txt");
    // The same host on headless sway, beside Waybar.
    values.merge(
        measureByScript(settings.source / "bench/host/sway.sh", {settings.build.string()}, scratch / "sway.txt"));
    return values;
}

std::optional<double> get(const std::map<std::string, double>& values, const std::string& key, double divisor = 1) {
    if (const auto it = values.find(key); it != values.end()) return it->second / divisor;
    return std::nullopt;
}

// ---- the report -----------------------------------------------------------

struct WidgetShape {
    const char* kind;
    const char* family;
};

// Every widget in every family it comes in (drawn in process), and for the
// whole-process runs each widget at its largest family, plus the common
// systemLarge accounts board.
constexpr WidgetShape kDrawn[] = {
    {"focus", "systemSmall"},
    {"accounts", "systemMedium"},
    {"accounts", "systemLarge"},
    {"accounts", "systemExtraLarge"},
    {"accounts-limit", "systemMedium"},
    {"accounts-limit", "systemLarge"},
    {"accounts-limit", "systemExtraLarge"},
    {"sparkline", "systemMedium"},
    {"dashboard", "systemLarge"},
    {"dashboard", "systemExtraLarge"},
};
constexpr WidgetShape kProcesses[] = {
    {"focus", "systemSmall"},         {"accounts", "systemLarge"},
    {"accounts", "systemExtraLarge"}, {"accounts-limit", "systemExtraLarge"},
    {"sparkline", "systemMedium"},    {"dashboard", "systemExtraLarge"},
};
constexpr const char* kKinds[] = {"focus", "accounts", "accounts-limit", "sparkline", "dashboard"};

std::optional<Settings> parseArguments(int argc, char** argv) {
    Settings s;
    for (int i = 1; i < argc; ++i) {
        const std::string a = argv[i];
        const bool hasValue = i + 1 < argc;
        if (a == "--quick") {
            s.quick = true;
            s.runs = 7;
        } else if (a == "--no-host") {
            s.host = false;
        } else if (a == "--build" && hasValue) {
            s.build = argv[++i];
        } else if (a == "--source" && hasValue) {
            s.source = argv[++i];
        } else if (a == "--runs" && hasValue) {
            s.runs = std::max(1, std::atoi(argv[++i]));
        } else {
            std::fprintf(stderr, "usage: %s [--quick] [--build DIR] [--source DIR] [--runs N] [--no-host]\n", argv[0]);
            return std::nullopt;
        }
    }
    return s;
}

int run(const Settings& settings) {
    std::string pattern = (fs::temp_directory_path() / "mw-bench-report-XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr) {
        std::perror("mkdtemp");
        return 1;
    }
    const fs::path scratch = pattern;
    const fs::path container = scratch / "container";
    fs::create_directories(container);

    // A fresh sample payload: the processes get the same "now" with --now,
    // the host reads it with the clock, a moment later.
    const Date now = systemNowInWholeSeconds();
    std::ofstream(container / kPayloadFileName, std::ios::binary) << encodePayload(samplePayload(now));
    setenv("METERWICK_CONTAINER", container.c_str(), 1);
    const std::string nowText = formatISO8601(now);

    const fs::path b = settings.build;
    std::fprintf(stderr, "benchmarks…\n");
    const auto payload = runBenchmarks(settings, b / "bench/payload/mw_bench_payload", scratch);
    const auto timeline = runBenchmarks(settings, b / "bench/timeline/mw_timeline_bench", scratch);
    const auto widgets = runBenchmarks(settings, b / "bench/widgets/mw_widget_bench", scratch);
    const auto manyTools = runBenchmarks(settings, b / "bench/tools/mw_tools_bench", scratch, {"--tools", "10000"});

    std::fprintf(stderr, "processes (median of %d runs)…\n", settings.runs);
    const std::string cli = (b / "app/meterwick-widgets").string();
    const auto small = timeAlternately({{"/bin/true"},
                                        {(b / "bench/floor/mw_floor_hello").string()},
                                        {(b / "bench/floor/mw_floor_pango").string()},
                                        {cli, "--now", nowText, "timeline", "accounts"},
                                        {cli, "kinds"}},
                                       settings.runs);
    const auto& [trueRun, helloRun, pangoRun, timelineRun, kindsRun] =
        std::tie(small[0], small[1], small[2], small[3], small[4]);
    // The whole gallery in one process, per image written.
    const fs::path galleryDir = scratch / "gallery";
    const auto galleryRun = timeProcess({cli, "--now", nowText, "gallery", "--output", galleryDir.string()},
                                        std::max(3, settings.runs / 4));
    std::optional<double> galleryPerImage;
    std::optional<double> galleryCPUPerImage;
    std::optional<double> galleryKBPerImage;
    if (galleryRun.wallMS) {
        int images = 0;
        double bytes = 0;
        for (const auto& entry : fs::directory_iterator(galleryDir)) {
            if (entry.path().extension() != ".png") continue;
            ++images;
            bytes += static_cast<double>(entry.file_size());
        }
        if (images > 0) {
            galleryPerImage = *galleryRun.wallMS / images;
            galleryCPUPerImage = *galleryRun.cpuMS / images;
            galleryKBPerImage = bytes / 1024 / images;
        }
    }
    // Each render beside its own runs of the Pango floor.
    std::vector<ProcessFigures> renderRuns;
    std::vector<ProcessFigures> renderFloors;
    for (const auto& w : kProcesses) {
        const auto pair = timeAlternately({{(b / "bench/floor/mw_floor_pango").string()},
                                           {cli, "--now", nowText, "render", w.kind, "--family", w.family, "--scale",
                                            "2", "--output", (scratch / "render.png").string()}},
                                          settings.runs);
        renderFloors.push_back(pair[0]);
        renderRuns.push_back(pair[1]);
    }

    std::map<std::string, double> host;
    if (settings.host) {
        std::fprintf(stderr, "desktop host under Xvfb and on sway…\n");
        host = measureHost(settings, scratch);
    }

    Table table;
    table.section("payload decode (floor: nlohmann::json::parse of the same bytes)");
    for (const int tools : {1, 10, 100}) {
        const std::string arg = std::string("/").append(std::to_string(tools));
        const auto bare = lookup(payload, "BM_BareParse" + arg);
        const std::string what = std::to_string(tools) + (tools == 1 ? " tool" : " tools");
        table.row("decode, " + what, lookup(payload, "BM_Decode" + arg), "us", bare);
        table.row("WidgetStore::load (read + decode), " + what, lookup(payload, "BM_StoreLoad" + arg), "us", bare);
    }

    table.section("timeline build, sample payload (floor: WidgetStore::load alone)");
    const auto load = lookup(timeline, "BM_Load");
    for (const auto* kind : kKinds)
        table.row(std::string("timeline ") + kind, lookup(timeline, std::string("BM_Timeline/") + kind), "us", load);

    table.section("10000 tools, 10.8 MB: load, timeline, layout, paint (floor: WidgetStore::load of the file)");
    const auto manyLoad = lookup(manyTools, "BM_ToolsLoad/10000", 1000);
    table.row("WidgetStore::load", manyLoad, "ms", std::nullopt);
    for (const auto* kind : kKinds)
        table.row(std::string("whole draw, ") + kind,
                  lookup(manyTools, std::string("BM_ToolsDraw/") + kind + "/10000", 1000), "ms", manyLoad);

    table.section("layout + paint at scale 2, warm text cache (floor: layout alone)");
    for (const auto& w : kDrawn) {
        const std::string name = std::string(w.kind) + "/" + w.family;
        table.row(std::string(w.kind) + " " + w.family, lookup(widgets, "BM_LayoutPaint/" + name, 1000), "ms",
                  lookup(widgets, "BM_Layout/" + name, 1000));
    }
    table.section("PNG encoding, accounts systemLarge 728x764 px (floor: copying the pixels)");
    const auto copy = lookup(widgets, "BM_CopyPixels/accounts/systemLarge", 1000);
    table.row("encodePNG", lookup(widgets, "BM_EncodePNG/accounts/systemLarge", 1000), "ms", copy);
    table.row("Cairo's PNG writer, for comparison", lookup(widgets, "BM_EncodePNGCairo/accounts/systemLarge", 1000),
              "ms", copy);
    table.row("gallery PNG files, mean size (scale 2)", galleryKBPerImage, "KB", std::nullopt);

    table.section(
        "whole process, wall time (floors, run in turn with what they measure: a C++ hello world for data commands; "
        "Pango start-up for drawing)");
    table.row("/bin/true", trueRun.wallMS, "ms", std::nullopt);
    table.row("C++ hello world (iostream)", helloRun.wallMS, "ms", trueRun.wallMS);
    table.row("Pango start-up (font map, one line)", pangoRun.wallMS, "ms", trueRun.wallMS);
    table.row("meterwick-widgets timeline accounts", timelineRun.wallMS, "ms", helloRun.wallMS);
    table.row("meterwick-widgets kinds", kindsRun.wallMS, "ms", helloRun.wallMS);
    table.row("gallery, per image (whole process / images)", galleryPerImage, "ms", std::nullopt);
    for (std::size_t i = 0; i < std::size(kProcesses); ++i)
        table.row(std::string("render ") + kProcesses[i].kind + " " + kProcesses[i].family + " @2x",
                  renderRuns[i].wallMS, "ms", renderFloors[i].wallMS);

    table.section("whole process, CPU time (user + system; the same floors)");
    table.row("C++ hello world (iostream)", helloRun.cpuMS, "ms", std::nullopt);
    table.row("Pango start-up (font map, one line)", pangoRun.cpuMS, "ms", std::nullopt);
    table.row("meterwick-widgets timeline accounts", timelineRun.cpuMS, "ms", helloRun.cpuMS);
    table.row("gallery, per image (whole process / images)", galleryCPUPerImage, "ms", std::nullopt);
    for (std::size_t i = 0; i < std::size(kProcesses); ++i)
        table.row(std::string("render ") + kProcesses[i].kind + " " + kProcesses[i].family + " @2x",
                  renderRuns[i].cpuMS, "ms", renderFloors[i].cpuMS);

    table.section("peak memory, max RSS of the process (floor: Pango start-up)");
    table.row("Pango start-up", kbToMB(pangoRun.maxRSSKB), "MB", std::nullopt);
    table.row("meterwick-widgets timeline accounts", kbToMB(timelineRun.maxRSSKB), "MB", kbToMB(pangoRun.maxRSSKB));
    for (std::size_t i = 0; i < std::size(kProcesses); ++i)
        table.row(std::string("render ") + kProcesses[i].kind + " " + kProcesses[i].family + " @2x",
                  kbToMB(renderRuns[i].maxRSSKB), "MB", kbToMB(pangoRun.maxRSSKB));

    if (settings.host) {
        table.section(
            "desktop host, five widgets placed and drawn, Xvfb, then sway (floor: GTK program, five windows)");
        const auto floorRSS = get(host, "floor_rss_kb", 1024);
        table.row("host VmRSS", get(host, "host_rss_kb", 1024), "MB", floorRSS);
        table.row("host VmHWM (peak)", get(host, "host_hwm_kb", 1024), "MB", get(host, "floor_hwm_kb", 1024));
        table.row("  of VmRSS: anonymous (RssAnon)", get(host, "host_anon_kb", 1024), "MB",
                  get(host, "floor_anon_kb", 1024));
        table.row("  of VmRSS: mapped files (RssFile)", get(host, "host_file_kb", 1024), "MB",
                  get(host, "floor_file_kb", 1024));
        table.row("host Pss (shared libraries by share)", get(host, "host_pss_kb", 1024), "MB", std::nullopt);
        table.row("GTK floor VmRSS (gtkmm, five windows)", floorRSS, "MB", std::nullopt);
        table.row("host VmRSS beside plain GTK 3 (C API, five windows)", get(host, "host_rss_kb", 1024), "MB",
                  get(host, "gtkc_rss_kb", 1024));
        table.row("host VmRSS beside Xlib + Cairo + Pango (five windows)", get(host, "host_rss_kb", 1024), "MB",
                  get(host, "xlib_rss_kb", 1024));
        table.row("  plain GTK 3: RssAnon", get(host, "gtkc_anon_kb", 1024), "MB", std::nullopt);
        table.row("  plain GTK 3: Pss", get(host, "gtkc_pss_kb", 1024), "MB", std::nullopt);
        table.row("  Xlib + Cairo + Pango: RssAnon", get(host, "xlib_anon_kb", 1024), "MB", std::nullopt);
        table.row("  Xlib + Cairo + Pango: Pss", get(host, "xlib_pss_kb", 1024), "MB", std::nullopt);
        table.row("peer: Conky, text and bars, 1 s updates: VmRSS", get(host, "conky_rss_kb", 1024), "MB",
                  std::nullopt);
        table.row("  Conky: RssAnon", get(host, "conky_anon_kb", 1024), "MB", std::nullopt);
        table.row("  Conky: Pss", get(host, "conky_pss_kb", 1024), "MB", std::nullopt);
        table.row("host VmRSS on sway, layer-shell (beside Waybar)", get(host, "sway_host_rss_kb", 1024), "MB",
                  get(host, "waybar_rss_kb", 1024));
        table.row("  on sway: RssAnon (beside Waybar's)", get(host, "sway_host_anon_kb", 1024), "MB",
                  get(host, "waybar_anon_kb", 1024));
        table.row("  on sway: Pss (beside Waybar's)", get(host, "sway_host_pss_kb", 1024), "MB",
                  get(host, "waybar_pss_kb", 1024));
        table.row("peer: Waybar, one custom module, sway: VmRSS", get(host, "waybar_rss_kb", 1024), "MB", std::nullopt);
        const std::string idle = std::to_string(static_cast<int>(get(host, "idle_seconds").value_or(0)));
        table.row("host context switches in " + idle + " s idle", get(host, "idle_switches"), "", std::nullopt);
        table.row("Conky context switches in " + idle + " s idle", get(host, "conky_switches"), "", std::nullopt);
        table.row("host timer wake-ups in " + std::to_string(static_cast<int>(get(host, "idle_seconds").value_or(0))) +
                      " s idle",
                  get(host, "timer_wakeups"), "", std::nullopt);
    }

    std::fputs(table.render().c_str(), stdout);

    // The fixed targets among these figures.
    const auto ratio = [](std::optional<double> value, std::optional<double> floor) -> std::optional<double> {
        if (!value || !floor || *floor <= 0) return std::nullopt;
        return *value / *floor;
    };
    std::printf("\n");
    // Process targets by wall time and by CPU time: on a machine busy with
    // other work the wall time of every process grows, the floors' included,
    // while the CPU time stays what the program itself costs.
    for (const auto& [what, wall] : {std::pair{"wall", true}, std::pair{"CPU", false}}) {
        const auto time = [wall](const ProcessFigures& f) { return wall ? f.wallMS : f.cpuMS; };
        if (const auto r = ratio(time(timelineRun), time(helloRun)))
            std::printf("target: a timeline process within 3x a C++ hello world (%s time): %s (%.2fx)\n", what,
                        *r <= 3 ? "met" : "missed", *r);
        std::optional<double> worstRender;
        for (std::size_t i = 0; i < renderRuns.size(); ++i)
            if (const auto r = ratio(time(renderRuns[i]), time(renderFloors[i])))
                worstRender = std::max(worstRender.value_or(0), *r);
        if (worstRender)
            std::printf("target: every render process within 2x Pango start-up (%s time): %s (worst %.2fx)\n", what,
                        *worstRender <= 2 ? "met" : "missed", *worstRender);
        if (const auto perImage = wall ? galleryPerImage : galleryCPUPerImage)
            std::printf("target: gallery at most 12 ms per image (%s time): %s (%.1f ms)\n", what,
                        *perImage <= 12 ? "met" : "missed", *perImage);
    }
    if (const auto rss = get(host, "host_rss_kb", 1024)) {
        std::printf("target: host resident memory at most 30 MB: %s (%.1f MB)\n", *rss <= 30 ? "met" : "missed", *rss);
        if (const auto sway = get(host, "sway_host_rss_kb", 1024), waybar = get(host, "waybar_rss_kb", 1024);
            sway && waybar)
            std::printf("target: host resident memory on sway below Waybar's: %s (%.1f MB beside %.1f MB)\n",
                        *sway < *waybar ? "met" : "missed", *sway, *waybar);
        if (const auto wakeups = get(host, "timer_wakeups"))
            std::printf("target: no timer wake-ups between entry dates: %s (%.0f)\n", *wakeups == 0 ? "met" : "missed",
                        *wakeups);
    }

    std::error_code ignored;
    fs::remove_all(scratch, ignored);
    return 0;
}

}  // namespace
}  // namespace mw::bench

int main(int argc, char** argv) {
    const auto settings = mw::bench::parseArguments(argc, argv);
    if (!settings) return 2;
    return mw::bench::run(*settings);
}
