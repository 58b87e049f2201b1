#include <gtest/gtest.h>

#include "preferences/HiddenCalendars.h"

namespace valdrix {
namespace {

TEST(HiddenCalendars, ReadsAndWritesTheStoredList) {
  const struct {
    const char* stored;
    const char* written;
  } rows[]{
      {"", ""},
      {",,B,,A,", "A,B"},
      {" A,A ", " A,A "},
      {"b,a,B,A", "A,B,a,b"},
      // By code point: z (U+007A) < é (U+00E9) < U+FFFD < U+1F600.
      {"\xF0\x9F\x98\x80,\xEF\xBF\xBD,\xC3\xA9,z", "z,\xC3\xA9,\xEF\xBF\xBD,\xF0\x9F\x98\x80"},
      {"\"A\",'B;C'", "\"A\",'B;C'"},
  };
  for (const auto& [stored, written] : rows)
    EXPECT_EQ(HiddenCalendars::parse(stored).serialized(), written) << stored;
}

}  // namespace
}  // namespace valdrix
