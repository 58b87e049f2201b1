// Transfers against a real server on this machine.

#include <cmath>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <utility>

#include "desktop/session/HttpsUrlSession.h"
#include "desktop/session/QtRunLoop.h"
#include "tests/net/HttpsServer.h"
#include "tests/support/WaitFor.h"

namespace valdrix::tests {
namespace {

using desktop::HttpsUrlSession;
using End = HttpsServer::End;
using Answer = std::optional<std::pair<int, std::string>>;

/// Longer than the test's own limit: whoever waits for it fails.
constexpr double endless = 1000;

class HttpsUrlSessionTest : public testing::Test {
 protected:
  void SetUp() override {
    for (const auto* const name : {"https_proxy", "HTTPS_PROXY", "all_proxy", "ALL_PROXY"})
      qunsetenv(name);
    restart({});
  }
  /// `names` are the server's, when they are not its own.
  void restart(const std::string& names) {
    ASSERT_TRUE(names.empty() ? server_.start() : server_.start(names));
    session_.emplace(runLoop_, VALDRIX_FETCH);
    qputenv("SSL_CERT_FILE", server_.certificate().c_str());
  }
  [[nodiscard]] Token start(const std::string& url, double timeout = endless) {
    return session_->data({url, timeout}, [this](std::optional<platform::UrlResponse> response) {
      ++completions_;
      answer_ = response ? Answer({response->statusCode, response->body}) : std::nullopt;
    });
  }
  [[nodiscard]] Answer get(const std::string& url, double timeout = endless) {
    const auto before = completions_;
    const auto token = start(url, timeout);
    EXPECT_EQ(completions_, before) << "called back at once";
    EXPECT_TRUE(waitFor([&] { return completions_ > before; }));
    return answer_;
  }

  HttpsServer server_;
  desktop::QtRunLoop runLoop_;
  std::optional<HttpsUrlSession> session_;
  int completions_ = 0;
  Answer answer_;
};

QByteArray ok(const QByteArray& body, const QByteArray& header = {}) {
  return "HTTP/1.1 200 OK\r\n" + header + "Content-Length: " + QByteArray::number(body.size()) +
         "\r\n\r\n" + body;
}

QByteArray redirection(const std::string& to) {
  return "HTTP/1.1 302 Found\r\nContent-Length: 0\r\nLocation: " + QByteArray::fromStdString(to) +
         "\r\n\r\n";
}

TEST_F(HttpsUrlSessionTest, OnlyWholeAnswersOfTheSameHostCount) {
  const QByteArray limit(64 * 1024, 'x');
  const QByteArray inChunks = "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n";
  const auto to = [&](const char* host, const char* scheme = "https") {
    return redirection(server_.url("/plain", host, scheme));
  };
  const struct {
    const char* name;
    QByteArray reply;
    Answer answer;
  } rows[]{
      {"plain", ok("1.2.0\n"), {{200, "1.2.0\n"}}},
      {"not UTF-8", ok("\xFF\xFE"), {{200, "\xFF\xFE"}}},
      {"not there", "HTTP/1.1 404 Not Found\r\nContent-Length: 4\r\n\r\nGone", {{404, "Gone"}}},
      {"no HTTP", "1.2.0\n", {}},
      {"of the largest size", ok(limit), {{200, limit.toStdString()}}},
      {"too large", ok(limit + 'x'), {}},
      {"in chunks", inChunks + "2\r\n1.\r\n1\r\n2\r\n0\r\n\r\n", {{200, "1.2"}}},
      {"too large, in chunks", inChunks + "A00000\r\n" + QByteArray(10 << 20, 'x'), {}},
      {"too large a head", ok("1", QByteArray("A: b\r\n").repeated(20000)), {}},
      {"packed unasked", ok("\x1F\x8B", "Content-Encoding: gzip\r\n"), {{200, "\x1F\x8B"}}},
      {"cut", "HTTP/1.1 200 OK\r\nContent-Length: 9\r\n\r\n1.2", {}},
      {"cut in chunks", inChunks + "2\r\n1.\r\n", {}},
      {"perhaps cut", "HTTP/1.1 200 OK\r\n\r\n1.2", {}},
      {"to the same host", redirection("/plain"), {{200, "plain"}}},
      {"to the same host in full", to("LOCALHOST"), {{200, "plain"}}},
      {"to plain HTTP", to("localhost", "http"), {}},
      {"to another host", to("127.0.0.1"), {}},
      {"to another port", redirection("https://localhost:1/plain"), {}},
      {"with a password", to("me:secret@localhost"), {}},
      {"to itself", redirection("/"), {}},
  };
  for (const auto& row : rows) {
    server_.replies = {{"/", {row.reply}}, {"/plain", {ok("plain")}}};
    EXPECT_EQ(get(server_.url("/")), row.answer) << row.name;
  }
}

TEST_F(HttpsUrlSessionTest, SaysNothingButWhatHttpNeeds) {
  server_.replies["/version.txt"] = {ok("1")};
  const auto url = server_.url("/version.txt");
  ASSERT_TRUE(get(url));
  const auto host = QByteArray::fromStdString(url.substr(8, url.rfind('/') - 8));
  EXPECT_THAT(server_.requests,
              testing::ElementsAre("GET /version.txt HTTP/1.1\r\nHost: " + host + "\r\n\r\n"));
}

TEST_F(HttpsUrlSessionTest, OnlyServersThatProveWhoTheyAreAreAsked) {
  restart("DNS:elsewhere.test");
  EXPECT_EQ(get(server_.url("/")), std::nullopt);
  // Trusted by nobody.
  ASSERT_TRUE(server_.start());
  qunsetenv("SSL_CERT_FILE");
  EXPECT_EQ(get(server_.url("/")), std::nullopt);
  EXPECT_EQ(server_.connections, 2);
  for (const auto& url :
       {server_.url("/", "localhost", "http"), server_.url("/", "a:b@localhost"),
        std::string("file:///etc/hostname"), std::string("https://"), std::string()})
    EXPECT_EQ(get(url), std::nullopt) << url;
  EXPECT_EQ(server_.connections, 2);
  EXPECT_THAT(server_.requests, testing::IsEmpty());
}

TEST_F(HttpsUrlSessionTest, TheTimeCoversTheWholeTransfer) {
  server_.replies["/"] = {"HTTP/1.1 200 OK\r\n\r\n", End::dribble};
  server_.replies["/silent"] = {{}, End::hang};
  server_.replies["/chain"] = {redirection("/")};
  for (const auto* const path : {"/", "/silent", "/chain"})
    EXPECT_EQ(get(server_.url(path), 0.3), std::nullopt) << path;
  for (const double timeout : {0.0, -1.0, std::nan("")})
    EXPECT_EQ(get(server_.url("/"), timeout), std::nullopt) << timeout;
}

TEST_F(HttpsUrlSessionTest, NobodyWaitsForAServerThatIsNoLongerWanted) {
  server_.replies["/"] = {{}, End::hang};
  server_.replies["/next"] = {ok("1")};
  auto cancelled = start(server_.url("/"));
  auto open = start(server_.url("/"));
  ASSERT_TRUE(waitFor([this] { return server_.requests.size() == 2; }));
  cancelled.reset();
  EXPECT_TRUE(get(server_.url("/next")));
  open.reset();
  EXPECT_EQ(completions_, 1);
}

TEST_F(HttpsUrlSessionTest, AProgramThatDoesNotDoItsPartIsAFailure) {
  QTemporaryDir folder;
  QFile hanging(folder.filePath("hang"));
  ASSERT_TRUE(hanging.open(QIODevice::WriteOnly));
  hanging.write("#!/bin/sh\nexec sleep 1000\n");
  ASSERT_TRUE(hanging.setPermissions(QFile::ReadOwner | QFile::ExeOwner));
  hanging.close();
  for (const QString& program :
       {hanging.fileName(), QString("yes"), QString("true"), QString("echo"), QString("/none")}) {
    session_.emplace(runLoop_, program);
    EXPECT_EQ(get(server_.url("/"), 0.1), std::nullopt) << program.toStdString();
  }
}

}  // namespace
}  // namespace valdrix::tests
