#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include <QByteArray>
#include <QFile>
#include <QSslConfiguration>
#include <QSslKey>
#include <QSslServer>
#include <QSslSocket>
#include <QTemporaryDir>
#include <QTimer>

#include "tests/support/SpawnedProgram.h"

namespace valdrix::tests {

/// A server on this machine that answers each path with bytes that a test wrote down. Needs an
/// event loop.
class HttpsServer {
 public:
  enum class End { close, hang, dribble };
  struct Reply {
    QByteArray bytes;
    End end = End::close;
  };

  /// Listens anew, as localhost and 127.0.0.1 or as others. A client that trusts this certificate
  /// needs `certificate()`.
  bool start(const std::string& names = "DNS:localhost,IP:127.0.0.1") {
    const auto file = folder_.filePath("certificate");
    const auto path = file.toStdString();
    SpawnedProgram({"openssl", "req", "-x509", "-newkey", "ec", "-pkeyopt",
                    "ec_paramgen_curve:prime256v1", "-nodes", "-subj", "/CN=test", "-addext",
                    "subjectAltName=" + names, "-keyout", path + ".key", "-out", path},
                   {})
        .wait();
    QFile key(file + ".key");
    const auto chain = QSslCertificate::fromPath(file);
    if (!key.open(QIODevice::ReadOnly) || chain.isEmpty()) return false;
    QSslConfiguration configuration;
    configuration.setLocalCertificate(chain.first());
    configuration.setPrivateKey(QSslKey(key.readAll(), QSsl::Ec));
    server_ = std::make_unique<QSslServer>();
    server_->setSslConfiguration(configuration);
    QObject::connect(server_.get(), &QSslServer::startedEncryptionHandshake, server_.get(),
                     [this] { ++connections; });
    QObject::connect(server_.get(), &QSslServer::pendingConnectionAvailable, server_.get(), [this] {
      serve(static_cast<QSslSocket&>(*server_->nextPendingConnection()));
    });
    return server_->listen(QHostAddress::LocalHost);
  }
  [[nodiscard]] std::string certificate() const {
    return folder_.filePath("certificate").toStdString();
  }
  [[nodiscard]] std::string url(const std::string& path, const std::string& host = "localhost",
                                const std::string& scheme = "https") const {
    return scheme + "://" + host + ':' + std::to_string(server_->serverPort()) + path;
  }

  std::map<QByteArray, Reply> replies;
  std::vector<QByteArray> requests;  ///< their heads
  int connections = 0;

 private:
  void serve(QSslSocket& socket) {
    QObject::connect(&socket, &QSslSocket::readyRead, &socket, [this, &socket] {
      if (!socket.peek(socket.bytesAvailable()).endsWith("\r\n\r\n")) return;
      requests.push_back(socket.readAll());
      const auto& reply = replies[requests.back().split(' ').value(1)];
      socket.write(reply.bytes);
      if (reply.end == End::close) socket.disconnectFromHost();
      if (reply.end != End::dribble) return;
      auto* const drip = new QTimer(&socket);
      QObject::connect(drip, &QTimer::timeout, &socket, [&socket] { socket.write("."); });
      drip->start(20);
    });
  }

  QTemporaryDir folder_;
  std::unique_ptr<QSslServer> server_;
};

}  // namespace valdrix::tests
