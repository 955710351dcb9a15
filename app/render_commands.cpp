// render, describe, gallery, demo: the widgets drawn from their timelines.

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <future>
#include <iostream>
#include <memory>
#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include "app/cli.hpp"
#include "app/drawing.hpp"
#include "bundle/widget_view.hpp"
#include "payload/codec.hpp"
#include "payload/sample.hpp"
#include "platform/atomic_write.hpp"
#include "render/cairo/painter.hpp"
#include "render/cairo/text.hpp"
#include "render/describe.hpp"

namespace mw::cli {
namespace {

struct DrawArguments {
    std::string kind;
    std::string family;
    CLI::Option* familyOption = nullptr;
    std::vector<std::string> assignments;
    int entry = 0;
    double scale = 2;
    std::string appearance = "light";
    std::string output;
};

void addDrawOptions(CLI::App& command, DrawArguments& args) {
    command.add_option("KIND", args.kind, "Kind string or kind word")->required();
    args.familyOption =
        command.add_option("--family", args.family, "One of the widget's families (default: its first)")
            ->type_name("FAMILY");
    addSetOption(command, args.assignments);
    command.add_option("--entry", args.entry, "Which entry of the timeline to draw (default 0)")
        ->check(
            [](const std::string& text) {
                // Decimal digits only: no sign, no hex, no exponent.
                const bool digits = !text.empty() && text.size() <= 6 &&
                                    std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
                return digits ? std::string() : "\"" + text + "\" is not an entry number (0, 1, 2 …)";
            },
            "", "N");
    command.add_option("--appearance", args.appearance, "light or dark (default light)")
        ->check(CLI::IsMember({"light", "dark"}));
}

render::Appearance appearanceFrom(const std::string& text) {
    render::Appearance appearance = render::Appearance::light;
    render::parseAppearance(text, appearance);
    return appearance;
}

// Entry N of the widget's timeline (the build writes the self-report, as a
// host's would) and its layout.
render::DisplayList laidOutEntry(const GlobalOptions& options, const DrawArguments& args) {
    const auto& widget = widgetNamed(args.kind);
    const auto family =
        familyFor(widget, args.familyOption->count() > 0 ? std::optional(args.family) : std::nullopt);
    const auto parameters = intentParametersFor(widget, args.assignments);
    const auto timeline = widget.timeline(providerContext(options), parameters);
    if (static_cast<std::size_t>(args.entry) >= timeline.entries.size())
        throw UsageError("--entry " + std::to_string(args.entry) + ": the timeline has " +
                         std::to_string(timeline.entries.size()) + " entries (0 to " +
                         std::to_string(timeline.entries.size() - 1) + ")");
    return layoutWidget(timeline.entries[static_cast<std::size_t>(args.entry)], family, render::systemTextMeasurer());
}

void checkOutputPath(const std::string& path) {
    const auto extension = std::filesystem::path(path).extension().string();
    if (extension != ".png" && extension != ".svg" && extension != ".pdf")
        throw UsageError("--output: \"" + path + "\" must end in .png, .svg or .pdf");
}

// Writes bytes atomically; a failure is reported like bad input would be.
// Drawings are not flushed to disk: each is drawn again from the payload at
// any time, the rename still shows readers the old file or the new one, and
// a flush per image was most of a gallery's time on a busy disk.
void writeOutput(const std::filesystem::path& path, const std::string& bytes, Flush flush = Flush::toDisk) {
    if (!writeFileAtomically(path, bytes, flush)) throw std::runtime_error("cannot write " + path.string());
}

struct GalleryItem {
    std::string file;
    std::string title;
};

// Writes a gallery's images on a second thread while the next is laid out and
// painted: encoding takes about as long as painting. Two workspaces take
// turns, so an image is painted while the one before it is encoded; the
// encoder touches nothing but its own image's pixels, so the bytes are those
// of drawing and encoding one after the other. Paths are printed in gallery
// order once their file is in place.
class GalleryWriter {
public:
    GalleryWriter() = default;
    GalleryWriter(const GalleryWriter&) = delete;
    GalleryWriter& operator=(const GalleryWriter&) = delete;
    ~GalleryWriter() {
        for (auto& turn : turns_)
            if (turn.written.valid()) turn.written.wait();
    }

    void write(const render::DisplayList& list, const render::PaintOptions& options, std::filesystem::path path) {
        Turn& turn = turns_[next_++ % turns_.size()];
        finish(turn);
        auto image = std::make_shared<render::SurfacePtr>(render::paintToImage(list, options, turn.workspace));
        turn.path = std::move(path);
        turn.written = std::async(std::launch::async, [&turn, image] {
            writeOutput(turn.path, turn.workspace.encodePNG(std::move(*image)), Flush::unflushed);
        });
    }

    // Waits for the files still being written, in order; rethrows a failed write.
    void finishAll() {
        for (std::size_t i = 0; i < turns_.size(); ++i) finish(turns_[(next_ + i) % turns_.size()]);
    }

private:
    struct Turn {
        render::ImageWorkspace workspace;
        std::filesystem::path path;
        std::future<void> written;
    };

    static void finish(Turn& turn) {
        if (!turn.written.valid()) return;
        turn.written.get();
        std::cout << turn.path.string() << '\n';
    }

    std::array<Turn, 2> turns_;
    std::size_t next_ = 0;
};

// Every widget in every family, light and dark, plus the enhanced Focus
// card; returns the files written, in gallery order.
std::vector<GalleryItem> drawGallery(const ProviderContext& context, const std::filesystem::path& dir) {
    std::filesystem::create_directories(dir);
    struct Variant {
        std::string suffix;
        IntentParameters parameters;
    };
    std::vector<GalleryItem> items;
    GalleryWriter writer;
    for (const auto& widget : widgetDeclarations()) {
        std::vector<Variant> variants{{"", {}}};
        if (widget.kindWord == "focus") variants.push_back({"-enhanced", {{"style", "enhanced"}}});
        for (const auto& variant : variants) {
            const auto timeline = widget.timeline(context, variant.parameters);
            for (const auto family : widget.families) {
                const auto list = layoutWidget(timeline.entries.front(), family, render::systemTextMeasurer());
                for (const auto appearance : {render::Appearance::light, render::Appearance::dark}) {
                    const std::string file = std::string(widget.kindWord) + variant.suffix + "-" +
                                             std::string(rawValue(family)) + "-" +
                                             std::string(render::appearanceName(appearance)) + ".png";
                    writer.write(list, {appearance, 2}, dir / file);
                    items.push_back({file, std::string(widget.displayName) + variant.suffix + " · " +
                                               std::string(rawValue(family)) + " · " +
                                               std::string(render::appearanceName(appearance))});
                }
            }
        }
    }
    writer.finishAll();
    return items;
}

std::string htmlEscaped(const std::string& text) {
    std::string out;
    for (const char c : text) {
        switch (c) {
            case '&': out += "&amp;"; break;
            case '<': out += "&lt;"; break;
            case '>': out += "&gt;"; break;
            case '"': out += "&quot;"; break;
            default: out += c;
        }
    }
    return out;
}

void writeIndex(const std::filesystem::path& dir, const std::vector<GalleryItem>& items) {
    std::string html =
        "<!doctype html>\n<meta charset=\"utf-8\">\n<title>Meterwick widgets</title>\n"
        "<style>body{font-family:Inter,sans-serif;background:#888;margin:24px}"
        "figure{display:inline-block;margin:12px;vertical-align:top}"
        "img{zoom:0.5;border-radius:44px;box-shadow:0 4px 24px rgba(0,0,0,.3)}"
        "figcaption{font-size:12px;color:#fff;margin-top:6px}</style>\n"
        "<h1 style=\"color:#fff\">Meterwick widgets</h1>\n";
    for (const auto& item : items)
        html += "<figure><img src=\"" + htmlEscaped(item.file) + "\" alt=\"" + htmlEscaped(item.title) +
                "\"><figcaption>" + htmlEscaped(item.title) + "</figcaption></figure>\n";
    writeOutput(dir / "index.html", html, Flush::unflushed);
    std::cout << (dir / "index.html").string() << '\n';
}

}  // namespace

void registerRenderCommands(CLI::App& app, const GlobalOptions& options) {
    auto* renderCommand = app.add_subcommand("render", drawingCommandDescription("render"));
    auto renderArgs = std::make_shared<DrawArguments>();
    addDrawOptions(*renderCommand, *renderArgs);
    renderCommand->add_option("--scale", renderArgs->scale, "Pixels per point for PNG (default 2)")
        ->check([](const std::string& text) {
            // Checked before the range, which would call "abc" out of range
            // and lets "nan" through (no comparison with it fails).
            char* end = nullptr;
            const double value = std::strtod(text.c_str(), &end);
            const bool number = !text.empty() && end == text.c_str() + text.size() && std::isfinite(value);
            return number ? std::string() : "\"" + text + "\" is not a number";
        })
        ->check(CLI::Range(0.25, 8.0));
    renderCommand->add_option("--output", renderArgs->output, "The file to write: .png, .svg or .pdf")
        ->required()
        ->type_name("FILE");
    renderCommand->callback([&options, renderArgs] {
        checkOutputPath(renderArgs->output);
        const auto list = laidOutEntry(options, *renderArgs);
        const render::PaintOptions paint{appearanceFrom(renderArgs->appearance), renderArgs->scale};
        if (const auto written = render::writeFile(list, renderArgs->output, paint); !written)
            throw std::runtime_error(written.error());
    });

    auto* describeCommand = app.add_subcommand("describe", drawingCommandDescription("describe"));
    auto describeArgs = std::make_shared<DrawArguments>();
    addDrawOptions(*describeCommand, *describeArgs);
    describeCommand->callback([&options, describeArgs] {
        const auto list = laidOutEntry(options, *describeArgs);
        std::cout << render::describe(list, appearanceFrom(describeArgs->appearance)).dump(2) << '\n';
    });

    auto* gallery = app.add_subcommand("gallery", drawingCommandDescription("gallery"));
    auto galleryDir = std::make_shared<std::string>();
    gallery->add_option("--output", *galleryDir, "The directory to write into")->required()->type_name("DIR");
    gallery->callback([&options, galleryDir] {
        writeIndex(*galleryDir, drawGallery(providerContext(options), *galleryDir));
    });

    auto* demo = app.add_subcommand("demo", drawingCommandDescription("demo"));
    auto demoDir = std::make_shared<std::string>("out/demo");
    demo->add_option("--output", *demoDir, "The directory to write into (default out/demo)")->type_name("DIR");
    auto demoForce = std::make_shared<bool>(false);
    demo->add_flag("--force", *demoForce, "Replace the payload of a container the directory already holds");
    demo->callback([&options, demoDir, demoForce] {
        const std::filesystem::path dir = *demoDir;
        const auto container = dir / "container";
        std::error_code ec;
        if (!*demoForce && std::filesystem::exists(std::filesystem::symlink_status(container / kPayloadFileName, ec)))
            throw UsageError((container / kPayloadFileName).string() +
                             " already exists; add --force to replace it with the sample payload");
        std::filesystem::create_directories(container);
        auto context = providerContext(options);
        writeOutput(container / kPayloadFileName, encodePayload(samplePayload(context.now)));
        context.container = container;
        writeIndex(dir, drawGallery(context, dir));
    });
}

}  // namespace mw::cli
