// Transfers against a real server on this machine.

#include <cmath>
#include <condition_variable>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <mutex>
#include <netdb.h>
#include <optional>
#include <string>
#include <utility>

#include "desktop/net/HttpsUrlSession.h"
#include "desktop/session/QtRunLoop.h"
#include "tests/net/HttpsServer.h"
#include "tests/support/WaitFor.h"

namespace valdrix::tests {
namespace {

/// A look-up of names that never ends while it is held.
struct NameService {
  std::mutex mutex;
  std::condition_variable changed;
  bool isHeld = false;
  int lookUps = 0;
};
NameService& nameService() {
  static NameService theService;
  return theService;
}

}  // namespace
}  // namespace valdrix::tests

// Stands before the C library's own for every library of this program. It is asked neither for
// localhost nor for addresses.
extern "C" int getaddrinfo(const char* /*name*/, const char* /*service*/, const addrinfo* /*hints*/,
                           addrinfo** /*result*/) {
  auto& names = valdrix::tests::nameService();
  std::unique_lock lock(names.mutex);
  ++names.lookUps;
  names.changed.wait(lock, [&] { return !names.isHeld; });
  --names.lookUps;
  names.changed.notify_all();
  return EAI_FAIL;
}

namespace valdrix::tests {
namespace {

using desktop::HttpsUrlSession;
using desktop::QtRunLoop;
using platform::UrlResponse;
using End = HttpsServer::Reply::End;
using Identity = HttpsServer::Identity;
using Answer = std::optional<std::pair<int, std::string>>;

/// Longer than the test's own limit: whoever waits for it fails.
constexpr double endless = 1000;

class HttpsUrlSessionTest : public testing::Test {
 protected:
  void SetUp() override {
    for (const auto* const name : {"https_proxy", "HTTPS_PROXY", "all_proxy", "ALL_PROXY"})
      qunsetenv(name);
    ASSERT_TRUE(server().start());
    server().replies.clear();
    server().requests.clear();
    server().connections = 0;
    session_.emplace(runLoop_, desktop::TrustedCertificates{.file = server().certificates()});
  }

  static HttpsServer& server() {
    // Its certificates take longer to make than all tests to run.
    static HttpsServer theServer;
    return theServer;
  }
  [[nodiscard]] Token start(const std::string& url, double timeout = endless) {
    return session_->data({url, timeout}, [this](std::optional<UrlResponse> response) {
      ++completions;
      answer = response ? Answer({response->statusCode, response->body}) : std::nullopt;
    });
  }
  [[nodiscard]] Answer get(const std::string& url, double timeout = endless) {
    const auto before = completions;
    const auto token = start(url, timeout);
    EXPECT_EQ(completions, before) << "called back at once";
    EXPECT_TRUE(waitFor([&] { return completions > before; }));
    return answer;
  }
  [[nodiscard]] static Answer full(int status, const std::string& body) { return {{status, body}}; }

  QtRunLoop runLoop_;
  std::optional<HttpsUrlSession> session_;
  int completions = 0;
  Answer answer;
};

QByteArray ok(const QByteArray& body) {
  return "HTTP/1.1 200 OK\r\nContent-Length: " + QByteArray::number(body.size()) + "\r\n\r\n" +
         body;
}

QByteArray redirection(const std::string& to) {
  return "HTTP/1.1 302 Found\r\nContent-Length: 0\r\nLocation: " + QByteArray::fromStdString(to) +
         "\r\n\r\n";
}

TEST_F(HttpsUrlSessionTest, OnlyWholeAnswersOfTheSameHostCount) {
  const QByteArray limit(64 * 1024, 'x');
  const QByteArray inChunks = "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n";
  const auto elsewhere = [](const char* host, const char* scheme = "https") {
    return redirection(server().url("/plain", host, scheme));
  };
  const struct {
    const char* name;
    HttpsServer::Reply reply;
    Answer answer;
  } rows[]{
      {"plain", {ok("1.2.0\n")}, full(200, "1.2.0\n")},
      {"not UTF-8", {ok("\xFF\xFE")}, full(200, "\xFF\xFE")},
      {"nothing to say", {"HTTP/1.1 204 No Content\r\n\r\n"}, full(204, "")},
      {"not there", {"HTTP/1.1 404 Not Found\r\nContent-Length: 4\r\n\r\nGone"}, full(404, "Gone")},
      {"no HTTP", {"1.2.0\n"}, {}},
      {"of the largest size", {ok(limit)}, full(200, limit.toStdString())},
      {"too large", {ok(limit + 'x')}, {}},
      {"in chunks", {inChunks + "2\r\n1.\r\n1\r\n2\r\n0\r\n\r\n"}, full(200, "1.2")},
      {"too large, in chunks", {inChunks + "A00000\r\n" + QByteArray(10 << 20, 'x')}, {}},
      {"too large a head",
       {"HTTP/1.1 200 OK\r\n" + QByteArray("A: b\r\n").repeated(20000) + "\r\n"},
       {}},
      {"packed, though nobody asked for it",
       {"HTTP/1.1 200 OK\r\nContent-Encoding: gzip\r\nContent-Length: 2\r\n\r\n\x1F\x8B"},
       full(200, "\x1F\x8B")},
      {"cut", {"HTTP/1.1 200 OK\r\nContent-Length: 9\r\n\r\n1.2", End::cut}, {}},
      {"closed early", {"HTTP/1.1 200 OK\r\nContent-Length: 9\r\n\r\n1.2"}, {}},
      {"cut in chunks", {inChunks + "2\r\n1.\r\n"}, {}},
      {"perhaps cut", {"HTTP/1.1 200 OK\r\n\r\n1.2"}, {}},
      {"to the same host", {redirection("/plain")}, full(200, "plain")},
      {"to the same host in full", {elsewhere("LOCALHOST")}, full(200, "plain")},
      {"to plain HTTP", {elsewhere("localhost", "http")}, {}},
      {"to another host", {elsewhere("127.0.0.1")}, {}},
      {"to another port", {redirection("https://localhost:1/plain")}, {}},
      {"to a file", {redirection("file:///etc/hostname")}, {}},
      {"with a name and a password", {elsewhere("me:secret@localhost")}, {}},
      {"to itself", {redirection("/")}, {}},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    server().replies = {{"/", row.reply}, {"/plain", {ok("plain")}}};
    EXPECT_EQ(get(server().url("/")), row.answer);
  }
}

TEST_F(HttpsUrlSessionTest, SaysNothingButWhatHttpNeeds) {
  server().replies["/version.txt"] = {ok("1")};
  const auto url = server().url("/version.txt");
  ASSERT_TRUE(get(url));
  const auto host = QByteArray::fromStdString(url.substr(8, url.rfind('/') - 8));
  EXPECT_THAT(server().requests,
              testing::ElementsAre("GET /version.txt HTTP/1.1\r\nHost: " + host + "\r\n\r\n"));
}

TEST_F(HttpsUrlSessionTest, OnlyServersThatProveWhoTheyAreAreAsked) {
  for (const auto identity : {Identity::misnamed, Identity::selfSigned}) {
    ASSERT_TRUE(server().start(identity));
    EXPECT_EQ(get(server().url("/")), std::nullopt);
  }
  EXPECT_EQ(server().connections, 2);
  for (const auto& url :
       {server().url("/", "localhost", "http"), server().url("/", "a:b@localhost"),
        std::string("file:///etc/hostname"), std::string("https://"), std::string()})
    EXPECT_EQ(get(url), std::nullopt) << url;
  EXPECT_EQ(server().connections, 2);
  EXPECT_THAT(server().requests, testing::IsEmpty());
}

TEST_F(HttpsUrlSessionTest, TheTimeCoversTheWholeTransfer) {
  server().replies["/"] = {"HTTP/1.1 200 OK\r\n\r\n", End::dribble};
  server().replies["/silent"] = {{}, End::hang};
  server().replies["/chain"] = {redirection("/")};
  for (const auto* const path : {"/", "/silent", "/chain"})
    EXPECT_EQ(get(server().url(path), 0.3), std::nullopt) << path;
  for (const double timeout : {0.0, -1.0, std::nan("")})
    EXPECT_EQ(get(server().url("/"), timeout), std::nullopt) << timeout;
}

TEST_F(HttpsUrlSessionTest, NobodyWaitsForAServerThatIsNoLongerWanted) {
  server().replies["/"] = {{}, End::hang};
  auto cancelled = start(server().url("/"));
  auto open = start(server().url("/"));
  ASSERT_TRUE(waitFor([] { return server().requests.size() == 2; }));
  cancelled.reset();
  server().replies["/next"] = {ok("1")};
  EXPECT_EQ(get(server().url("/next")), full(200, "1"));
  session_.reset();
  // Those that were under way have ended without a word, and their tokens mean nothing any more.
  EXPECT_EQ(completions, 1);
}

TEST_F(HttpsUrlSessionTest, NobodyWaitsForANameThatIsNotFound) {
  auto& names = nameService();
  const auto lookUps = [&] { return std::lock_guard(names.mutex), names.lookUps; };
  std::unique_lock(names.mutex), names.isHeld = true;
  EXPECT_EQ(get("https://late.test/", 0.3), std::nullopt);
  auto open = start("https://never.test/");
  EXPECT_TRUE(waitFor([&] { return lookUps() == 2; }));
  session_.reset();
  {
    const std::lock_guard lock(names.mutex);
    names.isHeld = false;
    names.changed.notify_all();
  }
  EXPECT_TRUE(waitFor([&] { return lookUps() == 0; }));
}

TEST_F(HttpsUrlSessionTest, AnAnswerMayEndTheSession) {
  server().replies["/"] = {ok("1")};
  bool isAnswered = false;
  const auto token =
      session_->data({server().url("/")}, [&](const std::optional<UrlResponse>& response) {
        session_.reset();
        isAnswered = response.has_value();
      });
  EXPECT_TRUE(waitFor([&] { return isAnswered; }));
}

}  // namespace
}  // namespace valdrix::tests
