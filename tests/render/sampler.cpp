// Draws a sheet of the drawing layer's primitives, light and dark side by
// side, to look at by eye: mw_render_sampler [OUTPUT.png|.svg|.pdf] [SCALE]
#include <cstdio>
#include <cstdlib>
#include <numbers>
#include <string>

#include "render/cairo/painter.hpp"
#include "render/cairo/text.hpp"
#include "render/layout.hpp"
#include "render/view.hpp"

using namespace mw::render;
using mw::Color;

namespace {

View ring(double fraction, Color color, double width) {
    return ZStack({
                      Circle().stroke(Color::primary().withOpacity(0.09), StrokeStyle{.lineWidth = width}),
                      Circle()
                          .trim(0, fraction)
                          .stroke(color, StrokeStyle{.lineWidth = width, .cap = LineCap::round})
                          .rotation(-std::numbers::pi / 2),
                  })
        .padding(width / 2);
}

View tick(double fraction, double length) {
    return GeometryReader([=](Size size) {
        const double side = std::min(size.width, size.height);
        return RoundedRectangle(0.8)
            .fill(Color::primary().withOpacity(0.6))
            .frame(1.6, length)
            .offset(0, -side / 2)
            .rotationDegrees(fraction * 360)
            .frame(size.width, size.height);
    });
}

View section(const char* title, View content) {
    return VStack({Text(title).font(Font::system(9, Weight::semibold)).tracking(0.6).foreground(Color::secondary()),
                   content},
                  {.alignment = HAlign::leading, .spacing = 4});
}

View textStyles() {
    return VStack(
        {
            Text("Regular 13 — The quick brown fox"),
            Text("Medium 12 — jumps over").font(Font::system(12, Weight::medium)),
            Text("Semibold 11 secondary").font(Font::system(11, Weight::semibold)).foreground(Color::secondary()),
            Text("Bold 12 tertiary").font(Font::system(12, Weight::bold)).foreground(Color::tertiary()),
            HStack({Text("1111").font(Font::system(13, Weight::bold).monospaced()),
                    Text("8888").font(Font::system(13, Weight::bold).monospaced()),
                    Text("1111").font(Font::system(13, Weight::bold)), Text("8888").font(Font::system(13, Weight::bold))},
                   {.spacing = 6}),
            Text("TRACKING 0.6").font(Font::system(9, Weight::semibold)).tracking(0.6).foreground(Color::secondary()),
            Text("42") .font(Font::system(28, Weight::bold, Design::rounded)) +
                Text("%").font(Font::system(28 * 0.55, Weight::bold, Design::rounded)),
            Text("A headline that shrinks to fit")
                .font(Font::system(20, Weight::bold))
                .lineLimit(1)
                .minimumScaleFactor(0.6)
                .frame(Frame{.maxWidth = 180}),
            Text("A long headline that cannot shrink enough and is cut")
                .font(Font::system(20, Weight::bold))
                .lineLimit(1)
                .minimumScaleFactor(0.6)
                .frame(Frame{.maxWidth = 180}),
            Text("Usage updates while the app is running, centred and wrapped.")
                .font(Font::system(11))
                .multilineTextAlignment(TextAlignment::center)
                .frame(Frame{.maxWidth = 180}),
            Text("<b>&amp; not markup</b>").font(Font::system(11)),
        },
        {.alignment = HAlign::leading, .spacing = 5});
}

View rings() {
    return HStack(
        {
            ring(0.42, Color::rgb8(217, 119, 87), 9).frame(64, 64),
            ZStack({ring(0.75, Color::rgb8(16, 163, 127), 7), tick(0.6, 10), ring(0.3, Color::rgb(0.98, 0.62, 0.16), 5)
                                                                       .padding(10),
                    VStack({Text("57").font(Font::system(15, Weight::bold, Design::rounded).monospaced()),
                            Text("left").font(Font::system(8, Weight::semibold)).foreground(Color::secondary())},
                           {.spacing = 0})})
                .frame(76, 76),
            ring(1.0, Color::rgb(0.93, 0.30, 0.30), 4).frame(40, 40),
            ring(0.0, Color::accent(), 4).frame(40, 40),
        },
        {.spacing = 10});
}

View symbols() {
    const char* names[] = {"arrow.clockwise.circle", "exclamationmark.triangle", "eye.slash", "link",
                           "clock.arrow.circlepath", "arrow.clockwise", "gauge", "bolt", "clock", "calendar",
                           "chart.bar", "flame", "hourglass", "timer", "sparkles", "exclamationmark.octagon",
                           "person.crop.circle", "cpu", "dollarsign.circle", "no.such.symbol"};
    std::vector<View> first, second;
    int i = 0;
    for (const char* n : names) (i++ < 10 ? first : second).push_back(Image::system(n));
    return VStack({HStack(first, {.spacing = 6}).font(Font::system(16, Weight::regular)),
                   HStack(second, {.spacing = 6}).font(Font::system(16, Weight::semibold)).foreground(Color::accent()),
                   HStack({Image::system("exclamationmark.triangle").font(Font::system(22, Weight::semibold)),
                           Image::system("link").font(Font::system(9, Weight::medium)),
                           Text("resets 3:05").font(Font::system(9, Weight::medium).monospaced())},
                          {.spacing = 4})
                       .foreground(Color::secondary())},
                  {.alignment = HAlign::leading, .spacing = 6});
}

View shapes() {
    return HStack(
        {
            RoundedRectangle(12).fill(Color::rgb8(66, 133, 244)).frame(48, 48),
            RoundedRectangle(12, CornerStyle::circular).fill(Color::rgb8(66, 133, 244)).frame(48, 48),
            RoundedRectangle(8).stroke(Color::primary(), StrokeStyle{.lineWidth = 2, .dash = {4, 3}}).frame(48, 32),
            Capsule().fill(Color::secondary()).frame(40, 10),
            Path(PathData::bars({0.2, 0.5, 0.9, 0.4, 0.7, 0.3})).fill(Color::rgb8(0, 178, 255)).frame(60, 40),
            Path(PathData::polyline({{0, 0.8}, {0.2, 0.6}, {0.4, 0.7}, {0.6, 0.3}, {0.8, 0.4}, {1, 0.1}}))
                .stroke(Color::rgb8(52, 168, 83), StrokeStyle{.lineWidth = 2, .cap = LineCap::round, .join = LineJoin::round})
                .frame(60, 40),
            RoundedRectangle(6).trim(0, 0.6).stroke(Color::accent(), 3).frame(40, 40),
            Image::asset("no-such-asset").frame(24, 24),
        },
        {.spacing = 8});
}

View emptyState() {
    return VStack({Image::system("exclamationmark.triangle").font(Font::system(22, Weight::semibold)).foreground(Color::secondary()),
                   Text("Can't read widget data").font(Font::system(13, Weight::semibold)),
                   Text("Open Meterwick, then Settings, Widgets, and use Repair.")
                       .font(Font::system(11))
                       .foreground(Color::secondary())},
                  {.spacing = 6})
        .multilineTextAlignment(TextAlignment::center)
        .padding(Edge::horizontal, 10)
        .frame(170, 170)
        .background(ZStack({RoundedRectangle(20).fill(Color::windowBackground().withOpacity(0.98)),
                            VStack({Rectangle().fill(Color::white(0.06)).frame(Frame{.height = 1, .maxWidth = infinity}),
                                    Spacer()})}))
        .clipShape(Shape::roundedRectangle(20));
}

View sheet() {
    return HStack(
               {
                   VStack({section("TEXT", textStyles()), section("SYMBOLS", symbols())},
                          {.alignment = HAlign::leading, .spacing = 14}),
                   VStack({section("RINGS", rings()), section("SHAPES", shapes()), section("EMPTY STATE", emptyState())},
                          {.alignment = HAlign::leading, .spacing = 14}),
               },
               {.alignment = VAlign::top, .spacing = 20})
        .padding(16)
        .frame(Frame::maxInfinity(Alignment::topLeading()))
        .background(Rectangle().fill(Color::windowBackground()));
}

}  // namespace

int main(int argc, char** argv) {
    const std::string out = argc > 1 ? argv[1] : "render-sampler.png";
    const double scale = argc > 2 ? std::atof(argv[2]) : 2.0;
    const Size half{720, 520};
    const DisplayList list = layout(sheet(), half, systemTextMeasurer());
    // Light on the left, dark on the right: two lists painted side by side.
    DisplayList both = list;
    both.size = {half.width * 2, half.height};
    if (out.ends_with(".png")) {
        SurfacePtr surface(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, static_cast<int>(both.size.width * scale),
                                                      static_cast<int>(both.size.height * scale)));
        cairo_t* cr = cairo_create(surface.get());
        cairo_scale(cr, scale, scale);
        paint(cr, list, Appearance::light);
        cairo_translate(cr, half.width, 0);
        paint(cr, list, Appearance::dark);
        cairo_destroy(cr);
        const std::string png = encodePNG(surface.get());
        std::FILE* f = std::fopen(out.c_str(), "wb");
        if (!f || std::fwrite(png.data(), 1, png.size(), f) != png.size()) return 1;
        std::fclose(f);
        return 0;
    }
    std::string error;
    if (!writeFile(list, out, PaintOptions{.appearance = Appearance::light, .scale = scale}, &error)) {
        std::fprintf(stderr, "%s\n", error.c_str());
        return 1;
    }
    return 0;
}
