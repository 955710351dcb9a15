#include "platform/text.hpp"

#include <gtest/gtest.h>

namespace mw {
namespace {

TEST(UpperCased, MapsEveryScriptWithCapitalsAndKeepsTheRest) {
    const std::pair<const char*, const char*> cases[] = {
        {"Claude \u00B7 Work 2", "CLAUDE \u00B7 WORK 2"},
        {"\u00F1and\u00FA \u00F7 \u0142\u00FF", "\u00D1AND\u00DA \u00F7 \u0141\u0178"},  // ÷ has no capital
        {"\u043A\u043E\u0434 \u03B1\u03C9\u03C2", "\u041A\u041E\u0414 \u0391\u03A9\u03A3"},  // final sigma too
        {"\u0561\u0562 \u1E9Bx \u0180", "\u0531\u0532 \u1E60X \u0243"},  // Armenian, Latin Extended
        {"stra\u00DFe \uFB01le", "STRASSE FILE"},                         // one letter, two capitals
        {"\U0001F680go \u65E5\u672C", "\U0001F680GO \u65E5\u672C"},       // no case: unchanged
        {"", ""},
    };
    for (const auto& [text, upper] : cases) EXPECT_EQ(upperCased(text), upper) << text;
}

TEST(UpperCased, CopiesBytesThatAreNotUTF8) {
    EXPECT_EQ(upperCased("a\xFF"
                         "b\xC0\xAF"
                         "c\xED\xA0\x80"
                         "d\xC3"),
              "A\xFF"
              "B\xC0\xAF"
              "C\xED\xA0\x80"
              "D\xC3");
}

TEST(CapitalisedFirst, ChangesOnlyTheFirstCharacter) {
    const std::pair<const char*, const char*> cases[] = {
        {"claude", "Claude"},       {"openCode", "OpenCode"}, {"\u00FCber uns", "\u00DCber uns"},
        {"\u00DFig", "SSig"},       {"9lives", "9lives"},     {"Already", "Already"},
        {"\xFFx", "\xFFx"},         {"", ""},
    };
    for (const auto& [text, label] : cases) EXPECT_EQ(capitalisedFirst(text), label) << text;
}

// What a producer can put in a string never breaks lines, hides text,
// reorders a sentence or makes the text engine shape megabytes.
TEST(DrawableText, ReplacesBreaksAndControlsDropsOverridesAndBalancesIsolates) {
    using namespace std::string_literals;
    const std::pair<std::string, std::string> cases[] = {
        {"Claude \u00B7 work", "Claude \u00B7 work"},                    // plain text is untouched
        {"a\nb\rc\td\u2028e\u2029f\u0085g", "a b c d e f g"},             // one line
        {"a\0b"s, "a\uFFFDb"},                                          // NUL no longer cuts the text
        {"a\x1B[31mb\x7F\u009B", "a\uFFFD[31mb\uFFFD\uFFFD"},             // C0, DEL, C1
        {"\xFF\xC0\xAFok\xED\xA0\x80", "\uFFFD\uFFFD\uFFFDok\uFFFD\uFFFD\uFFFD"},  // not UTF-8
        {"x\u202Eevil\u202C y", "xevil y"},                              // overrides dropped
        {"\u2067ab", "\u2067ab\u2069"},                                   // an open isolate is closed
        {"ab\u2069\u2069", "ab"},                                         // stray closers dropped
    };
    for (const auto& [in, out] : cases) EXPECT_EQ(drawableText(in), out) << in;
}

TEST(DrawableText, CutsLongTextAtACharacterWithAnEllipsis) {
    EXPECT_EQ(drawableText("\u00E9\u00E9\u00E9\u00E9", 3), "\u00E9\u00E9\u00E9\u2026");
    EXPECT_EQ(drawableText("abc", 3), "abc");
    const std::string huge(8 << 20, 'x');
    const auto cut = drawableText(huge);
    EXPECT_EQ(cut, std::string(kLongestShownText, 'x') + "\u2026");
}

TEST(Isolated, WrapsOnlyWhatCouldReorderItsNeighbours) {
    EXPECT_EQ(isolated("Claude"), "Claude");
    EXPECT_EQ(isolated("\u05E9\u05DC\u05D5\u05DD"), "\u2068\u05E9\u05DC\u05D5\u05DD\u2069");
    EXPECT_EQ(isolated("a\u202Eb"), "\u2068a\u202Eb\u2069");
}

}  // namespace
}  // namespace mw
