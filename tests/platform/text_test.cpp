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

}  // namespace
}  // namespace mw
