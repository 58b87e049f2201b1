// What an indicator says for a level.

#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <string>

#include "media/BrightnessHUDView.h"
#include "media/Level.h"
#include "media/VolumeHUDView.h"

namespace valdrix {
namespace {

constexpr float nan = std::numeric_limits<float>::quiet_NaN();
constexpr float infinity = std::numeric_limits<float>::infinity();

TEST(PercentText, RoundsHalvesUpAndStaysWithinBounds) {
  const struct {
    float level;
    const char* text;
  } rows[]{
      {0.0F, "0%"},      {0.0049F, "0%"},    {0.005F, "1%"},    {0.0625F, "6%"}, {0.625F, "63%"},
      {0.015625F, "2%"}, {0.9375F, "94%"},   {0.9951F, "100%"}, {1.0F, "100%"},  {1.5F, "100%"},
      {-0.5F, "0%"},     {infinity, "100%"}, {-infinity, "0%"}, {nan, "100%"},
  };
  for (const auto& row : rows) EXPECT_EQ(percentText(row.level), row.text) << row.level;
}

TEST(VolumeHUD, ShowsAsManyWavesAsTheLevelHas) {
  const struct {
    float level;
    bool isMuted;
    const char* symbol;
  } rows[]{
      {0.0F, false, "speaker.fill"},           {-1.0F, false, "speaker.fill"},
      {0.005F, false, "speaker.fill"},         {0.01F, false, "speaker.wave.1.fill"},
      {0.3399F, false, "speaker.wave.1.fill"}, {0.34F, false, "speaker.wave.2.fill"},
      {0.6699F, false, "speaker.wave.2.fill"}, {0.67F, false, "speaker.wave.3.fill"},
      {1.7F, false, "speaker.wave.3.fill"},    {0.0F, true, "speaker.slash.fill"},
      {0.8F, true, "speaker.slash.fill"},
  };
  for (const auto& row : rows)
    EXPECT_EQ((VolumeHUDView{.level = row.level, .isMuted = row.isMuted}.symbolName()), row.symbol)
        << row.level;
}

TEST(BrightnessHUD, ShowsALargeSunFromAThirdOn) {
  for (const float level : {-1.0F, 0.0F, 0.32F, std::nextafter(0.33F, 0.0F)})
    EXPECT_EQ(BrightnessHUDView{level}.symbolName(), "sun.min.fill") << level;
  for (const float level : {0.33F, 1.0F, 2.0F})
    EXPECT_EQ(BrightnessHUDView{level}.symbolName(), "sun.max.fill") << level;
}

}  // namespace
}  // namespace valdrix
