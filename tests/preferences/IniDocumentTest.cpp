#include <gtest/gtest.h>

#include "desktop/session/IniDocument.h"

namespace valdrix::desktop {
namespace {

using Values = IniDocument::Values;

TEST(IniDocument, ReadsOneGroup) {
  struct Case {
    const char* text;
    Values values;
    bool hasUnreadableLines = false;
  };
  const Case cases[] = {
      {"", {}},
      {"[General]\na=1\n b = two words \n", {{"a", "1"}, {"b", "two words"}}},
      {"a=1", {{"a", "1"}}},
      {"a=1\n[Other]\na=2\n[General]\nb=3\n", {{"a", "1"}, {"b", "3"}}},
      {"[General]\na=1\na=2\n", {{"a", "2"}}},
      {"# a=1\n;a=2\n\n  \n", {}},
      {"\xEF\xBB\xBF[General]\r\na=1\r\n", {{"a", "1"}}},
      {"a=\nb=x=y\n", {{"a", ""}, {"b", "x=y"}}},
      {"a=\\sx\\n\\\\n\\q\\", {{"a", " x\n\\n\\q\\"}}},
      {"a=1\njunk\nb=2\n", {{"a", "1"}, {"b", "2"}}, true},
      {"[Gener", {}, true},
      {"=1\n", {}, true},
      {"[]\n", {}, true},
      {"[Other]\njunk\n", {}, true},
  };
  for (const auto& [text, values, hasUnreadableLines] : cases) {
    const IniDocument document(text);
    EXPECT_EQ(document.values(), values) << text;
    EXPECT_EQ(document.hasUnreadableLines(), hasUnreadableLines) << text;
  }
}

TEST(IniDocument, ChangesOneLineAndKeepsTheRest) {
  struct Case {
    const char* before;
    const char* after;
  };
  // After setting a to 9.
  const Case cases[] = {
      {"", "[General]\na=9\n"},
      {"# mine\n", "# mine\n\n[General]\na=9\n"},
      {"[General]\n# why\na = 1 \n\nfuture=x,y\n[Window]\na=5\n",
       "[General]\n# why\na=9\n\nfuture=x,y\n[Window]\na=5\n"},
      {"[General]\nb=1\n\n# end\n[Window]\nw=1", "[General]\nb=1\na=9\n\n# end\n[Window]\nw=1\n"},
      {"b=1\n[Window]\n", "b=1\na=9\n[Window]\n"},
      {"[Window]\nw=1\n", "[Window]\nw=1\n\n[General]\na=9\n"},
      {"[General]\na=1\na=2\n", "[General]\na=1\na=9\n"},
      {"[General]\r\nb=caf\xE9\r\n", "[General]\r\nb=caf\xE9\r\na=9\n"},
  };
  for (const auto& [before, after] : cases) {
    IniDocument document(before);
    document.set("a", "9");
    EXPECT_EQ(document.text(), after);
    EXPECT_EQ(document.values().at("a"), "9");
    EXPECT_EQ(IniDocument(document.text()).values(), document.values()) << before;
  }
}

}  // namespace
}  // namespace valdrix::desktop
