#include "platform/text.hpp"

#include <gtest/gtest.h>

namespace vexa::platform {
namespace {

TEST(HostText, ConvertsBetweenUtf8AndUtf16) {
  const std::pair<std::u16string, std::string> cases[] = {
      {u"", ""},
      {std::u16string(u"a\0b", 3), std::string("a\0b", 3)},
      {u"\u007F\u0080\u07FF\u0800", "\x7F\xC2\x80\xDF\xBF\xE0\xA0\x80"},
      {u"\uD7FF\uE000\uFFFD\uFFFF", "\xED\x9F\xBF\xEE\x80\x80\xEF\xBF\xBD\xEF\xBF\xBF"},
      {u"\U00010000\U0010FFFF", "\xF0\x90\x80\x80\xF4\x8F\xBF\xBF"},
  };
  for (const auto& [utf16, utf8] : cases) {
    std::string narrow = "left over";
    std::u16string wide = u"left over";
    EXPECT_TRUE(ToNarrow(utf16, &narrow).ok() && ToWide(utf8, &wide).ok());
    EXPECT_EQ(narrow, utf8);
    EXPECT_EQ(wide, utf16);
  }
}

TEST(HostText, UnpairedSurrogatesBecomeTheReplacementCharacter) {
  const std::pair<std::u16string, std::string> cases[] = {
      {{0xD800}, "\xEF\xBF\xBD"},
      {{u'a', 0xDC00, u'b'},
       "a\xEF\xBF\xBD"
       "b"},
      {{0xDC00, 0xD800}, "\xEF\xBF\xBD\xEF\xBF\xBD"},
      {{0xD800, 0xD83D, 0xDE00}, "\xEF\xBF\xBD\xF0\x9F\x98\x80"},
  };
  for (const auto& [wide, expected] : cases) {
    std::string narrow;
    EXPECT_TRUE(ToNarrow(wide, &narrow).ok());
    EXPECT_EQ(narrow, expected);
  }
}

// The sequences of Unicode 15.0, tables 3-8 to 3-11, and those at the edges of the valid ranges.
TEST(HostText, IllFormedUtf8BecomesOneReplacementCharacterPerMaximalSubpart) {
  const std::pair<std::string, std::u16string> cases[] = {
      {"\xC0\xAF\xE0\x80\xBF\xF0\x81\x82\x41",
       u"\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\uFFFDA"},
      {"\xED\xA0\x80\xED\xBF\xBF\xED\xAF\x41",
       u"\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\uFFFDA"},
      {"\xF4\x91\x92\x93\xFF\x41\x80\xBF\x42", u"\uFFFD\uFFFD\uFFFD\uFFFD\uFFFDA\uFFFD\uFFFDB"},
      {"\xE1\x80\xE2\xF0\x91\x92\xF1\xBF\x41", u"\uFFFD\uFFFD\uFFFD\uFFFDA"},
      {"\xC1\xBF\xE0\x9F\xBF\xF0\x8F\xBF\xBF",
       u"\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD"},
      {"\xF4\x90\x80\x80\xF5\x80\x80\x80", std::u16string(8, u'\uFFFD')},
      {"a\xC3", u"a\uFFFD"},
      {"\xF0\x9F\x98", u"\uFFFD"},
  };
  for (const auto& [narrow, expected] : cases) {
    std::u16string wide;
    EXPECT_TRUE(ToWide(narrow, &wide).ok());
    EXPECT_EQ(wide, expected);
  }
}

}  // namespace
}  // namespace vexa::platform
