// What every store of preferences does, in memory and on disk.

#include <cmath>
#include <fstream>
#include <gtest/gtest.h>
#include <limits>
#include <string>

#include <QTemporaryDir>

#include "desktop/session/IniUserDefaults.h"
#include "preferences/PreferenceDefaults.h"
#include "preferences/PreferenceKeys.h"
#include "sim/SimUserDefaults.h"

namespace valdrix {
namespace {

struct SimulatedWorld {
  platform::UserDefaults& defaults() { return defaults_; }
  void setFromOutside(const std::string& key, const std::string& text) {
    defaults_.setFromOutside(key, text);
  }
  bool isUntouched() const { return trace_.lines().empty(); }

  sim::Trace trace_;
  sim::SimUserDefaults defaults_{trace_};
};

struct IniWorld {
  platform::UserDefaults& defaults() { return defaults_; }
  void setFromOutside(const std::string& key, const std::string& text) {
    std::ofstream(file_, std::ios::trunc) << "[General]\n" << key << '=' << text << '\n';
  }
  bool isUntouched() const { return !std::filesystem::exists(file_); }

  QTemporaryDir folder_;
  std::filesystem::path file_ = folder_.filePath("valdrix/valdrix.conf").toStdString();
  desktop::IniUserDefaults defaults_{file_};
};

template <class W>
class UserDefaultsContract : public testing::Test {
 protected:
  platform::UserDefaults& defaults() { return world_.defaults(); }
  W world_;
};

using Worlds = testing::Types<SimulatedWorld, IniWorld>;
TYPED_TEST_SUITE(UserDefaultsContract, Worlds);

TYPED_TEST(UserDefaultsContract, RegisteredDefaultsLieBelowTheUsersValuesAndAreNeverWritten) {
  auto& defaults = this->defaults();
  registerPreferenceDefaults(defaults);
  EXPECT_EQ(defaults.integerForKey(preferenceKeys::calendarMaxEvents), 4);
  EXPECT_TRUE(this->world_.isUntouched());

  defaults.set(preferenceKeys::volumeHUDEnabled, false);
  defaults.set(preferenceKeys::calendarMaxEvents, std::int64_t{25});
  registerPreferenceDefaults(defaults);
  EXPECT_FALSE(defaults.boolForKey(preferenceKeys::volumeHUDEnabled));
  EXPECT_EQ(defaults.integerForKey(preferenceKeys::calendarMaxEvents), 25);
  EXPECT_TRUE(defaults.boolForKey(preferenceKeys::brightnessHUDEnabled));
}

TYPED_TEST(UserDefaultsContract, TextThatIsNoValueOfTheTypeCountsAsMissing) {
  struct Case {
    std::string text;
    bool asBool;
    std::int64_t asInteger;
    double asDouble;
  };
  constexpr double infinity = std::numeric_limits<double>::infinity();
  // Registered: true, 4, 0.9.
  const Case cases[] = {
      {"false", false, 4, 0.9},
      {"No", false, 4, 0.9},
      {"0", false, 0, 0},
      {"-3", true, -3, -3},
      {"2.5", true, 4, 2.5},
      {"0,5", true, 4, 0.9},
      {"1e308", true, 4, 1e308},
      {"1e999", true, 4, 0.9},
      {"9223372036854775807", true, std::numeric_limits<std::int64_t>::max(), 0x1p63},
      {"9223372036854775808", true, 4, 0x1p63},
      {"inf", true, 4, infinity},
      {"0x10", true, 4, 0.9},
      {"falsehood", true, 4, 0.9},
      {"", true, 4, 0.9},
      {std::string(1000000, '9'), true, 4, 0.9},
  };
  auto& defaults = this->defaults();
  defaults.registerDefaults({{"b", true}, {"i", std::int64_t{4}}, {"d", 0.9}});
  for (const auto& [text, asBool, asInteger, asDouble] : cases) {
    const auto name = text.substr(0, 40);
    this->world_.setFromOutside("b", text);
    EXPECT_EQ(defaults.boolForKey("b"), asBool) << name;
    this->world_.setFromOutside("i", text);
    EXPECT_EQ(defaults.integerForKey("i"), asInteger) << name;
    this->world_.setFromOutside("d", text);
    EXPECT_EQ(defaults.doubleForKey("d"), asDouble) << name;
    EXPECT_EQ(defaults.stringForKey("d"), text) << name;
  }
  this->world_.setFromOutside("d", "nan");
  EXPECT_TRUE(std::isnan(defaults.doubleForKey("d")));
}

TYPED_TEST(UserDefaultsContract, ValuesReadBackAsTheyWereSet) {
  auto& defaults = this->defaults();
  for (const bool value : {true, false}) {
    defaults.set("key", value);
    EXPECT_EQ(defaults.boolForKey("key"), value);
  }
  for (const auto value : {std::int64_t{0}, std::numeric_limits<std::int64_t>::min(),
                           std::numeric_limits<std::int64_t>::max()}) {
    defaults.set("key", value);
    EXPECT_EQ(defaults.integerForKey("key"), value);
  }
  for (const double value :
       {0.1, 0.9, -1.5, 1e308, 5e-324, 4.0, std::numeric_limits<double>::infinity()}) {
    defaults.set("key", value);
    EXPECT_EQ(defaults.doubleForKey("key"), value);
  }
  defaults.set("key", std::numeric_limits<double>::quiet_NaN());
  EXPECT_TRUE(std::isnan(defaults.doubleForKey("key")));
  for (const auto& value :
       {std::string(), std::string("a,b;c"), std::string(" \t spaced \t "),
        std::string("\"quoted\""), std::string("[General]\nkey=2\r\n#no"),
        std::string("back\\slash\\n\\\\"), std::string("\0nul\0", 5),
        std::string("caf\xC3\xA9 \xFF\xFE"), std::string("a=b=c"), std::string(10'000'000, 'x')}) {
    defaults.set("key", value);
    EXPECT_EQ(defaults.stringForKey("key"), value) << value.substr(0, 40);
  }
}

}  // namespace
}  // namespace valdrix
