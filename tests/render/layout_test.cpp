#include "render/layout.hpp"

#include <gtest/gtest.h>

#include <numbers>

#include "render/fake_measurer.hpp"
#include "support/display_list.hpp"
#include "render/view.hpp"

namespace mw::render {
namespace {

using testing::FakeMeasurer;
using mw::testing::shapeFrames;
using mw::testing::textNamed;

const FakeMeasurer kMeasurer;

DisplayList lay(const View& v, Size size) { return layout(v, size, kMeasurer); }

View box(double w, double h) { return Rectangle().frame(w, h); }

TEST(StackLayout, VerticalStackPlacesChildrenWithSpacingAndAlignment) {
    struct Case {
        HAlign alignment;
        double expectedX;  // of the narrow child
    };
    for (const auto& c : {Case{HAlign::leading, 0}, Case{HAlign::center, 15}, Case{HAlign::trailing, 30}}) {
        const auto list = lay(VStack({box(50, 10), box(20, 20)}, {.alignment = c.alignment, .spacing = 5})
                                  .frame(Frame::maxInfinity(Alignment::topLeading())),
                              {100, 100});
        const auto frames = shapeFrames(list);
        ASSERT_EQ(frames.size(), 2u);
        EXPECT_EQ(frames[0], (Rect{0, 0, 50, 10}));
        EXPECT_EQ(frames[1], (Rect{c.expectedX, 15, 20, 20}));
    }
    // The root itself is centred in the widget.
    EXPECT_EQ(shapeFrames(lay(box(40, 20), {170, 170})).at(0), (Rect{65, 75, 40, 20}));
}

TEST(StackLayout, SpacerTakesTheLeftoverAndHonoursItsMinimum) {
    const auto list = lay(HStack({Text("ab"), Spacer(), Text("cd")}, {.spacing = 0}), {100, 20});
    Rect a, b;
    ASSERT_TRUE(textNamed(list, "ab", &a));
    ASSERT_TRUE(textNamed(list, "cd", &b));
    EXPECT_DOUBLE_EQ(a.x, 0);            // 13 pt text: 6.5 per character
    EXPECT_DOUBLE_EQ(b.maxX(), 100);

    // Too little room: the spacer keeps its minimum and the texts give way.
    const auto tight = lay(HStack({box(60, 10), Spacer(30), box(60, 10)}, {.spacing = 0}), {100, 20});
    const auto frames = shapeFrames(tight);
    EXPECT_DOUBLE_EQ(frames[1].x - frames[0].maxX(), 30);
}

TEST(StackLayout, FlexibleChildrenShareWhatTheFixedOnesLeave) {
    const auto list = lay(HStack({Rectangle().frame(Frame::maxWidthInfinity()).frame(Frame{.height = 10}), box(40, 10),
                                  Rectangle().frame(Frame{.height = 10})},
                                 {.spacing = 10}),
                          {200, 50});
    const auto frames = shapeFrames(list);
    ASSERT_EQ(frames.size(), 3u);
    EXPECT_DOUBLE_EQ(frames[1].width, 40);
    EXPECT_DOUBLE_EQ(frames[0].width, 70);
    EXPECT_DOUBLE_EQ(frames[2].width, 70);
    EXPECT_DOUBLE_EQ(frames[2].maxX(), 200);
}

TEST(StackLayout, LeastFlexibleChildIsSizedFirst) {
    // The text (flexible only down to its ellipsis) is offered its share
    // first and takes what it needs; the rectangle (flexible without bound)
    // takes the rest.
    const auto list = lay(HStack({Rectangle(), Text("abcdef")}, {.spacing = 0}), {100, 20});
    Rect t;
    ASSERT_TRUE(textNamed(list, "abcdef", &t));
    EXPECT_DOUBLE_EQ(t.width, 39);
    EXPECT_DOUBLE_EQ(shapeFrames(list).at(0).width, 61);
}

TEST(StackLayout, HigherLayoutPriorityIsOfferedSpaceFirst) {
    const View longText = Text("aaaa aaaa aaaa aaaa").lineLimit(1);  // 123.5 wide
    const auto plain = lay(HStack({longText, Text("bbbb bbbb bbbb bbbb").lineLimit(1)}, {.spacing = 0}), {130, 20});
    const auto prioritised = lay(
        HStack({longText, Text("bbbb bbbb bbbb bbbb").lineLimit(1).layoutPriority(1)}, {.spacing = 0}), {130, 20});
    EXPECT_TRUE(textNamed(plain, "aaaa")->truncated);
    EXPECT_TRUE(textNamed(plain, "bbbb")->truncated);
    EXPECT_FALSE(textNamed(prioritised, "bbbb")->truncated);
    EXPECT_EQ(std::get<TextDraw>(prioritised.ops.at(0).item).text(), "\xE2\x80\xA6");  // what is left
}

// Modifiers keep an empty view empty, so stacks still skip it; a frame takes space.
TEST(StackLayout, EmptyViewsTakeNoSpaceAndNoSpacing) {
    for (const auto& [middle, y] :
         {std::pair{View().padding(4).offset(1, 1).opacity(0.5), 14.0}, {View().frame(10, 10), 28.0}}) {
        const auto list = lay(VStack({box(10, 10), middle, box(10, 10)}, {.spacing = 4})
                                  .frame(Frame::maxInfinity(Alignment::topLeading())),
                              {50, 50});
        EXPECT_DOUBLE_EQ(shapeFrames(list).at(1).y, y);
    }
}

TEST(ZStackLayout, SizesToTheLargestChildAndAligns) {
    const auto list = lay(ZStack({box(40, 30), box(10, 10)}, {.alignment = Alignment::bottomTrailing()})
                              .frame(Frame::maxInfinity(Alignment::topLeading())),
                          {100, 100});
    const auto frames = shapeFrames(list);
    EXPECT_EQ(frames[0], (Rect{0, 0, 40, 30}));
    EXPECT_EQ(frames[1], (Rect{30, 20, 10, 10}));
}

TEST(Modifiers, PaddingPerEdgeShrinksTheOfferAndGrowsTheSize) {
    const View v = Rectangle().padding({.top = 1, .leading = 2, .bottom = 3, .trailing = 4});
    EXPECT_EQ(sizeThatFits(v, 50, 40, kMeasurer), (Size{50, 40}));
    const auto frames = shapeFrames(lay(v, {50, 40}));
    EXPECT_EQ(frames.at(0), (Rect{2, 1, 44, 36}));
    EXPECT_EQ(shapeFrames(lay(Rectangle().padding(Edge::horizontal, 10), {50, 40})).at(0), (Rect{10, 0, 30, 40}));
}

TEST(Modifiers, FlexibleFramesClampTheOffer) {
    struct Case {
        Frame frame;
        Size expected;
    };
    const Case cases[] = {
        {Frame::maxInfinity(), {200, 20}},                          // fills the offered width
        {Frame{.maxWidth = 80}, {80, 20}},                          // up to the maximum
        {Frame{.minWidth = 300}, {300, 20}},                        // at least the minimum
        {Frame{.minWidth = 10, .maxWidth = 30}, {30, 20}},
        {Frame{.width = 50}, {50, 20}},                             // fixed width, height of the child
    };
    for (const auto& c : cases) {
        EXPECT_EQ(sizeThatFits(Text("abc").frame(c.frame).frame(Frame{.height = 20}), 200, 100, kMeasurer), c.expected);
    }
    // A text in a fill frame, anchored top-leading.
    Rect t;
    textNamed(lay(Text("abc").frame(Frame::maxInfinity(Alignment::topLeading())), {200, 100}), "abc", &t);
    EXPECT_EQ(t.origin(), (Point{0, 0}));
    textNamed(lay(Text("abc").frame(Frame::maxInfinity(Alignment::bottomTrailing())), {200, 100}), "abc", &t);
    EXPECT_DOUBLE_EQ(t.maxX(), 200);
    EXPECT_DOUBLE_EQ(t.maxY(), 100);
}

TEST(Modifiers, OverlayAndBackgroundTakeTheChildsSizeAndAlign) {
    const auto list = lay(box(40, 40)
                              .background(Circle().fill(Color::white()))
                              .overlay(box(10, 10), Alignment::topTrailing()),
                          {40, 40});
    const auto frames = shapeFrames(list);
    ASSERT_EQ(frames.size(), 3u);
    EXPECT_EQ(frames[0], (Rect{0, 0, 40, 40}));  // background first
    EXPECT_EQ(frames[1], (Rect{0, 0, 40, 40}));
    EXPECT_EQ(frames[2], (Rect{30, 0, 10, 10}));  // overlay last
}

TEST(Modifiers, OffsetMovesTheDrawingButNotTheLayout) {
    const auto list = lay(VStack({box(10, 10).offset(5, -3), box(10, 10)}, {.spacing = 0}), {10, 20});
    const auto frames = shapeFrames(list);
    EXPECT_EQ(frames[0], (Rect{5, -3, 10, 10}));
    EXPECT_EQ(frames[1], (Rect{0, 10, 10, 10}));
}

TEST(Modifiers, FixedSizeKeepsTextOnItsIdealLine) {
    const View text = Text("aaaa bbbb cccc");  // 91 wide on one line
    EXPECT_EQ(sizeThatFits(text, 40, 100, kMeasurer).height, 13 * 1.2 * 3);
    EXPECT_EQ(sizeThatFits(text.fixedSize(), 40, 100, kMeasurer), (Size{91, 13 * 1.2}));
}

TEST(Modifiers, GeometryReaderIsGivenTheOfferedSize) {
    Size seen;
    const auto list = lay(GeometryReader([&](Size s) {
                              seen = s;
                              return box(s.width / 2, 5);
                          }).padding(10),
                          {120, 60});
    EXPECT_EQ(seen, (Size{100, 40}));
    EXPECT_EQ(shapeFrames(list).at(0), (Rect{10, 10, 50, 5}));
}

TEST(TextLayout, ShrinksInOneStepThenEllipsizesAtTheMinimumScale) {
    const View text = Text("abcdefghij").font(Font::system(20)).lineLimit(1).minimumScaleFactor(0.5);  // 100 wide
    struct Case {
        double width;
        double scale;
        std::string shown;
    };
    const Case cases[] = {
        {120, 1.0, "abcdefghij"},
        {75, 0.75, "abcdefghij"},
        {50, 0.5, "abcdefghij"},
        {40, 0.5, "abcdefg\xE2\x80\xA6"},  // 8 characters of 5 points
    };
    for (const auto& c : cases) {
        const auto list = lay(text, {c.width, 40});
        Rect frame;
        const TextDraw* t = textNamed(list, "abc", &frame);
        ASSERT_TRUE(t) << c.width;
        EXPECT_DOUBLE_EQ(t->scale, c.scale) << c.width;
        EXPECT_EQ(t->text(), c.shown) << c.width;
        EXPECT_DOUBLE_EQ(t->runs.front().style.font.size, 20 * c.scale);
        EXPECT_LE(frame.width, c.width + 1e-9);
        EXPECT_EQ(t->truncated, c.width == 40);
    }
}

TEST(TextLayout, WithoutAScaleFactorTextIsCutAtTheLastFittingCharacter) {
    const auto list = lay(Text("Claude Code Max").lineLimit(1), {50, 20});  // 6.5 per character
    const TextDraw* t = textNamed(list, "Cla");
    ASSERT_TRUE(t);
    EXPECT_EQ(t->text(), "Claude\xE2\x80\xA6");  // trailing blank dropped before the ellipsis
    EXPECT_EQ(t->scale, 1);
}

TEST(TextLayout, WrapsWithinTheLineLimitAndTheOfferedHeight) {
    const View text = Text("aaaa bbbb cccc dddd").font(Font::system(10));  // 5 per character, lines of 12
    Rect frame;
    auto list = lay(text.frame(Frame::maxInfinity(Alignment::topLeading())), {50, 100});
    EXPECT_FALSE(textNamed(list, "aaaa", &frame)->truncated);
    EXPECT_DOUBLE_EQ(frame.height, 24);

    list = lay(text.frame(Frame::maxInfinity(Alignment::topLeading())), {30, 100});
    EXPECT_DOUBLE_EQ((textNamed(list, "aaaa", &frame), frame.height), 48);

    list = lay(text.lineLimit(2).frame(Frame::maxInfinity(Alignment::topLeading())), {30, 100});
    const TextDraw* t = textNamed(list, "aaaa", &frame);
    EXPECT_TRUE(t->truncated);
    EXPECT_DOUBLE_EQ(frame.height, 24);
    EXPECT_EQ(t->text(), "aaaa bbbb\xE2\x80\xA6");

    list = lay(text.frame(Frame::maxInfinity(Alignment::topLeading())), {30, 30});  // room for two lines
    EXPECT_DOUBLE_EQ((textNamed(list, "aaaa", &frame), frame.height), 24);
}

TEST(TextLayout, EnvironmentFontsInheritAndInnerWins) {
    const auto list = lay(VStack({Text("a"), Text("b").font(Font::system(9)), Text("c").monospacedDigit()})
                              .font(Font::system(12, Weight::bold, Design::rounded))
                              .tracking(0.6),
                          {100, 100});
    const auto& a = textNamed(list, "a")->runs.front().style;
    const auto& b = textNamed(list, "b")->runs.front().style;
    const auto& c = textNamed(list, "c")->runs.front().style;
    EXPECT_EQ(a, (TextStyle{Font::system(12, Weight::bold, Design::rounded), 0.6}));
    EXPECT_EQ(b.font, Font::system(9));
    EXPECT_TRUE(c.font.monospacedDigit);
    EXPECT_FALSE(a.font.monospacedDigit);
}

TEST(TextLayout, ConcatenatedTextKeepsEachRunsFont) {
    const View v = (Text("42").font(Font::system(20, Weight::bold)) + Text("%").font(Font::system(11, Weight::bold)))
                       .foreground(Color::secondary());
    const auto list = lay(v, {100, 100});
    Rect frame;
    const TextDraw* t = textNamed(list, "42", &frame);
    ASSERT_TRUE(t);
    ASSERT_EQ(t->runs.size(), 2u);
    EXPECT_EQ(t->runs[1].style.font.size, 11);
    EXPECT_DOUBLE_EQ(frame.width, 2 * 10 + 5.5);
    EXPECT_EQ(t->color, Color::secondary());
}

TEST(Drawing, RotationTurnsAboutTheShapesCentre) {
    const View ring = Circle().trim(0, 0.42).stroke(Color::black(), 9).rotation(-std::numbers::pi / 2);
    const auto list = lay(ring.frame(60, 60), {100, 100});
    ASSERT_EQ(list.ops.size(), 1u);
    const DrawOp& op = list.ops[0];
    EXPECT_DOUBLE_EQ(op.rotationDegrees, -90);
    const Point c = op.transform.apply(op.frame.center());
    EXPECT_NEAR(c.x, 50, 1e-9);
    EXPECT_NEAR(c.y, 50, 1e-9);
    const Point right = op.transform.apply({op.frame.maxX(), op.frame.midY()});  // 3 o'clock turns to 12
    EXPECT_NEAR(right.x, 50, 1e-9);
    EXPECT_NEAR(right.y, 20, 1e-9);
}

TEST(Drawing, OpacityAndForegroundReachShapesTextsAndSymbols) {
    const auto list = lay(VStack({Circle(), Text("t"), Image::system("link"), Circle().fill(Color::white())})
                              .foreground(Color::secondary())
                              .opacity(0.5),
                          {100, 100});
    ASSERT_EQ(list.ops.size(), 4u);
    EXPECT_EQ(std::get<ShapeDraw>(list.ops[0].item).color, Color::secondary().withOpacity(0.5));
    EXPECT_EQ(std::get<TextDraw>(list.ops[1].item).color, Color::secondary().withOpacity(0.5));
    EXPECT_EQ(std::get<ImageDraw>(list.ops[2].item).tint, Color::secondary().withOpacity(0.5));
    EXPECT_EQ(std::get<ShapeDraw>(list.ops[3].item).color, Color::white().withOpacity(0.5));
}

TEST(Drawing, SymbolsAreSizedByTheFontUnlessResizable) {
    const auto list = lay(HStack({Image::system("bolt").font(Font::system(10)), Image::system("bolt").resizable().frame(30, 20)},
                                 {.spacing = 0}),
                          {100, 100});
    EXPECT_DOUBLE_EQ(list.ops.at(0).frame.width, 12);  // 1.2 × the font size
    EXPECT_EQ(list.ops.at(1).frame.size(), (Size{30, 20}));
}

TEST(Drawing, ClipsBracketTheirContent) {
    const auto list = lay(box(10, 10).clipShape(Shape::roundedRectangle(4)), {10, 10});
    ASSERT_EQ(list.ops.size(), 3u);
    EXPECT_TRUE(std::holds_alternative<ClipBegin>(list.ops[0].item));
    EXPECT_TRUE(std::holds_alternative<ShapeDraw>(list.ops[1].item));
    EXPECT_TRUE(std::holds_alternative<ClipEnd>(list.ops[2].item));
}

TEST(Links, RegionsAndTheTapURL) {
    const View rows = VStack({box(100, 20).link("meterwick://tool/a"), box(100, 20).link("meterwick://tool/b")},
                             {.spacing = 0})
                          .frame(Frame::maxInfinity(Alignment::topLeading()));
    auto list = layout(rows, {100, 100}, kMeasurer, {.tapURL = "meterwick://open"});
    ASSERT_EQ(list.links.size(), 2u);
    EXPECT_EQ(list.links[1], (Link{{0, 20, 100, 20}, "meterwick://tool/b"}));
    EXPECT_EQ(urlAt(list, {5, 25}), "meterwick://tool/b");
    EXPECT_EQ(urlAt(list, {5, 70}), "meterwick://open");

    list = lay(rows.widgetURL("meterwick://outer").padding(1).widgetURL("meterwick://outermost"), {100, 100});
    EXPECT_EQ(list.tapURL, "meterwick://outermost");
}

TEST(Colors, ResolvePerAppearance) {
    struct Case {
        Color color;
        const char* light;
        const char* dark;
    };
    // The palette itself is in the golden describe files and the dark snapshot.
    const Case cases[] = {
        {Color::tertiary(), "#00000078", "#FFFFFF70"},  // not the same alpha in both
        {Color::primary().withOpacity(0.1), "#00000016", "#FFFFFF16"},
        {Color::rgb(0.94, 0.33, 0.31), "#F0544FFF", "#F0544FFF"},
        {Color::rgb(2, -1, 0.5, 0.5).withOpacity(0.5), "#FF008040", "#FF008040"},  // clamped
    };
    for (const auto& c : cases) {
        EXPECT_EQ(toHex(resolve(c.color, Appearance::light)), c.light);
        EXPECT_EQ(toHex(resolve(c.color, Appearance::dark)), c.dark);
    }
}

TEST(Colors, AlphaReplacesOpacityMultipliesAndEqualityIgnoresHowAColourWasBuilt) {
    const std::pair<Color, Color> same[] = {
        {Color::rgb(0.2, 0.4, 0.6, 0.5), Color::rgb(0.2, 0.4, 0.6).withOpacity(0.5)},
        {Color::rgb(0.2, 0.4, 0.6, 0.5), Color::rgb(0.2, 0.4, 0.6, 0.1).withAlpha(0.5)},
        {Color::secondary(0.25), Color::secondary().withOpacity(0.5).withOpacity(0.5)},
        {Color::white(0.3), Color::gray(1).withAlpha(0.3)},
        {Color::legible(0.1, 0.2, 0.3), Color::rgb(0.1, 0.2, 0.3).withContrastFloor(Color::kLegibleContrast)},
        {Color::primary(), Color::primary().withContrastFloor(3)},  // semantic colours take no floor
    };
    for (const auto& [a, b] : same) EXPECT_EQ(a, b) << toHex(resolve(a, Appearance::light));
    EXPECT_NE(Color::rgb(0, 0, 0), Color::legible(0, 0, 0));
    EXPECT_NE(Color::primary(), Color::secondary());
    // Fading a translucent colour keeps it proportionally fainter; replacing does not.
    EXPECT_EQ(toHex(resolve(Color::primary(0.5).withOpacity(0.5), Appearance::light)), "#00000036");
    EXPECT_EQ(toHex(resolve(Color::primary(0.5).withAlpha(0.5), Appearance::light)), "#0000006C");
}

}  // namespace
}  // namespace mw::render
