// What a published file says, and what is made of an answer.

#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <string_view>

#include "settings/PublishedVersion.h"
#include "settings/UpdateCheckService.h"
#include "sim/SimDesktop.h"

namespace valdrix {
namespace {

using namespace std::string_view_literals;

TEST(PublishedVersion, IsTheTrimmedTextOfAWellFormedFile) {
  const struct {
    std::string_view file;
    std::optional<std::string_view> version;
  } rows[]{
      {"1.2.0\n", "1.2.0"},
      {"\r\n\t 1.2  beta\v\f", "1.2  beta"},
      {"\u00A0\u2003\u30001.2\u2028\u0085", "1.2"},
      {"v\u00E9rit\u00E9 \U0001F600\n", "v\u00E9rit\u00E9 \U0001F600"},
      {"1\0002"sv, "1\0002"sv},
      {"", {}},
      {" \n\u2029\u1680", {}},
      {"1.2\xE9", {}},   // Latin-1
      {"1.2\xC3", {}},   // cut off
      {"\xC0\xB1", {}},  // longer than it need be
      {"\xE0\x80\xB1", {}},
      {"\xED\xA0\x80", {}},      // a surrogate
      {"\xF4\x90\x80\x80", {}},  // out of range
      {"\x80", {}},
      {"\xFF\xFE\x31", {}},
  };
  for (const auto& row : rows)
    EXPECT_EQ(publishedVersion(row.file), row.version) << testing::PrintToString(row.file);
}

TEST(UpdateCheckService, ComparesWhatWasPublishedWithWhatRuns) {
  const struct {
    std::optional<std::string> running;
    platform::UrlResponse answer;
    bool isSuccess;
    bool hasUpdate;
  } rows[]{
      {"1.0", {200, "1.0\n"}, true, false},   {"1.0", {200, "1.1"}, true, true},
      {"1.0", {404, "1.0"}, false, true},     {"1.0", {200, " \n"}, false, true},
      {"1.0", {200, "1.0\xFF"}, false, true}, {"1.0", {199, "1.0"}, false, true},
      {"1.0", {300, "1.0"}, false, true},     {"1.0", {299, "1.0"}, true, false},
      {"1.0", {200, "0.9"}, true, true},      {std::nullopt, {200, "1.1"}, true, false},
      {"", {200, "1.1"}, true, false},        {"1.0 ", {200, "1.0 "}, true, true},
  };
  sim::SimDesktop desktop;
  UpdateCheckService service(desktop.urlSession, desktop.userCalendar, desktop.bundle);
  for (const auto& row : rows) {
    desktop.bundle.forgetInfo();
    if (row.running)
      desktop.bundle.setInfoText(std::string(platform::Bundle::shortVersionString), *row.running);
    desktop.urlSession.setAnswer(service.versionURL(), row.answer, 1);
    const auto before = service.lastSuccessAt();
    service.checkIfNeeded();
    service.checkIfNeeded();
    EXPECT_TRUE(service.isInFlight());
    desktop.runLoop.advance(300);
    EXPECT_FALSE(service.isInFlight());
    EXPECT_EQ(service.lastSuccessAt() != before, row.isSuccess) << row.answer.body;
    EXPECT_EQ(service.hasUpdate(), row.hasUpdate) << row.answer.body;
    desktop.runLoop.advance(1);
  }
}

}  // namespace
}  // namespace valdrix
