#include "tests/net/HttpsServer.h"

#include <QFile>
#include <QSslConfiguration>
#include <QSslKey>
#include <QSslSocket>
#include <QTimer>

#include "tests/support/ChildProcess.h"

namespace valdrix::tests {

HttpsServer::HttpsServer() {
  const bool isMade = makeCertificate("trusted", "DNS:localhost,IP:127.0.0.1") &&
                      makeCertificate("misnamed", "DNS:elsewhere.test") &&
                      makeCertificate("selfSigned", "DNS:localhost,IP:127.0.0.1");
  if (!isMade) return;
  QFile all(folder_.filePath("all.pem"));
  if (!all.open(QIODevice::WriteOnly)) return;
  for (const auto* const name : {"trusted.pem", "misnamed.pem"}) {
    QFile one(folder_.filePath(name));
    if (one.open(QIODevice::ReadOnly)) all.write(one.readAll());
  }
}

bool HttpsServer::makeCertificate(const QString& name, const QString& alternativeNames) const {
  const auto file = [&](const char* extension) { return folder_.filePath(name + extension); };
  return ChildProcess::run(
             "openssl",
             {"req", "-x509", "-newkey", "ec", "-pkeyopt", "ec_paramgen_curve:prime256v1", "-nodes",
              "-days", "2", "-subj", "/CN=" + name, "-addext", "subjectAltName=" + alternativeNames,
              "-keyout", file(".key"), "-out", file(".pem")})
             .exitCode == 0;
}

bool HttpsServer::start(Identity identity) {
  const QString name = identity == Identity::trusted    ? "trusted"
                       : identity == Identity::misnamed ? "misnamed"
                                                        : "selfSigned";
  QFile key(folder_.filePath(name + ".key"));
  const auto chain = QSslCertificate::fromPath(folder_.filePath(name + ".pem"));
  if (!key.open(QIODevice::ReadOnly) || chain.isEmpty()) return false;
  QSslConfiguration configuration;
  configuration.setLocalCertificate(chain.first());
  configuration.setPrivateKey(QSslKey(key.readAll(), QSsl::Ec));
  server_ = std::make_unique<QSslServer>();
  server_->setSslConfiguration(configuration);
  QObject::connect(server_.get(), &QSslServer::startedEncryptionHandshake, server_.get(),
                   [this] { ++connections; });
  QObject::connect(server_.get(), &QSslServer::pendingConnectionAvailable, server_.get(), [this] {
    if (auto* const socket = qobject_cast<QSslSocket*>(server_->nextPendingConnection()))
      serve(*socket);
  });
  return server_->listen(QHostAddress::LocalHost);
}

std::string HttpsServer::certificates() const { return folder_.filePath("all.pem").toStdString(); }

std::string HttpsServer::url(const std::string& path, const std::string& host,
                             const std::string& scheme) const {
  return scheme + "://" + host + ':' + std::to_string(server_->serverPort()) + path;
}

void HttpsServer::serve(QSslSocket& socket) {
  QObject::connect(&socket, &QSslSocket::readyRead, &socket, [this, &socket] {
    const auto head = socket.peek(socket.bytesAvailable());
    if (!head.endsWith("\r\n\r\n")) return;
    requests.push_back(socket.readAll());
    answer(socket, replies[head.split(' ').value(1)]);
  });
}

void HttpsServer::answer(QSslSocket& socket, const Reply& reply) {
  socket.write(reply.bytes);
  if (reply.end == Reply::End::close) {
    socket.disconnectFromHost();
  } else if (reply.end == Reply::End::cut) {
    socket.flush();
    socket.abort();
  } else if (reply.end == Reply::End::dribble) {
    auto* const drip = new QTimer(&socket);
    QObject::connect(drip, &QTimer::timeout, &socket, [&socket] { socket.write("."); });
    drip->start(20);
  }
}

}  // namespace valdrix::tests
