#pragma once

#include <map>
#include <string>
#include <vector>

#include <QByteArray>
#include <QSslServer>
#include <QTemporaryDir>

namespace valdrix::tests {

/// A server on this machine that answers each path with bytes that a test wrote down. Needs an
/// event loop.
class HttpsServer {
 public:
  enum class Identity {
    trusted,     ///< by whoever trusts `certificates()`; for localhost and 127.0.0.1
    misnamed,    ///< trusted, for another name
    selfSigned,  ///< for localhost, known to nobody
  };
  struct Reply {
    QByteArray bytes;
    enum class End { close, cut, hang, dribble } end = End::close;
  };

  HttpsServer();

  /// Whether it listens; anew when it did.
  [[nodiscard]] bool start(Identity identity = Identity::trusted);
  /// What a client needs to trust, as a file.
  [[nodiscard]] std::string certificates() const;
  /// `scheme://host:port/path`
  [[nodiscard]] std::string url(const std::string& path, const std::string& host = "localhost",
                                const std::string& scheme = "https") const;

  std::map<QByteArray, Reply> replies;
  /// The heads of all requests so far.
  std::vector<QByteArray> requests;
  int connections = 0;

 private:
  [[nodiscard]] bool makeCertificate(const QString& name, const QString& alternativeNames) const;
  void serve(QSslSocket& socket);
  void answer(QSslSocket& socket, const Reply& reply);

  QTemporaryDir folder_;
  std::unique_ptr<QSslServer> server_;
};

}  // namespace valdrix::tests
