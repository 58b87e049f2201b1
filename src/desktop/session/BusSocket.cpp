#include "desktop/session/BusSocket.h"

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <poll.h>
#include <string_view>
#include <unistd.h>

#include <QByteArray>
#include <sys/socket.h>
#include <sys/un.h>

#include "desktop/session/UniqueFd.h"

namespace valdrix::desktop {

namespace {

std::optional<std::string> valueAfter(std::string_view prefix, const std::string& address) {
  if (!address.starts_with(prefix)) return std::nullopt;
  const auto value = address.substr(prefix.size(), address.find_first_of(",;") - prefix.size());
  return QByteArray::fromPercentEncoding(QByteArray::fromStdString(value)).toStdString();
}

/// The beginning of what is answered to `bytes`; empty when nothing is.
std::string ask(int fd, const std::string& bytes, int milliseconds) {
  if (::send(fd, bytes.data(), bytes.size(), MSG_NOSIGNAL) < 0) return {};
  pollfd wait{fd, POLLIN, 0};
  if (::poll(&wait, 1, milliseconds) != 1) return {};
  std::string answer(256, '\0');
  const auto size = ::recv(fd, answer.data(), answer.size(), 0);
  answer.resize(static_cast<std::size_t>(std::max<ssize_t>(size, 0)));
  return answer;
}

// What follows keeps to D-Bus 1, "Authentication Protocol" and "Message Protocol".

std::string authentication() {
  const auto user = QByteArray::number(static_cast<uint>(::geteuid())).toHex();
  return std::string(1, '\0') + "AUTH EXTERNAL " + user.toStdString() + "\r\n";
}

constexpr char callType = 1;
constexpr char errorType = 3;

void appendNumber(std::string& bytes, std::size_t number) {
  for (unsigned shift = 0; shift < 32; shift += 8)
    bytes += static_cast<char>(number >> shift & 0xffU);
}

void appendField(std::string& fields, char code, char type, std::string_view value) {
  constexpr std::size_t alignment = 8;
  fields.resize((fields.size() + alignment - 1) / alignment * alignment);
  fields += {code, 1, type, 0};
  appendNumber(fields, value.size());
  fields += value;
  fields += '\0';
}

/// The call without which a bus takes nobody in.
std::string hello() {
  std::string fields;
  appendField(fields, 1, 'o', "/org/freedesktop/DBus");
  appendField(fields, 2, 's', "org.freedesktop.DBus");
  appendField(fields, 3, 's', "Hello");
  appendField(fields, 6, 's', "org.freedesktop.DBus");
  std::string message{'l', callType, 0, 1};
  for (const std::size_t number : {std::size_t{0}, std::size_t{1}, fields.size()})
    appendNumber(message, number);
  message += fields;
  message.resize((message.size() + 7) / 8 * 8);
  return message;
}

}  // namespace

std::optional<std::string> BusSocket::path() const { return valueAfter("unix:path=", address_); }

BusSocket::State BusSocket::probe(int milliseconds) const {
  // An abstract socket's name begins with a zero where others have their path.
  const auto abstract = valueAfter("unix:abstract=", address_);
  const auto name = abstract ? std::string(1, '\0') + *abstract : path().value_or("");
  if (name.empty()) return State::answering;

  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  if (name.size() >= sizeof(address.sun_path)) return State::absent;
  std::copy(name.begin(), name.end(), address.sun_path);
  const auto length = offsetof(sockaddr_un, sun_path) + name.size() + (abstract ? 0 : 1);
  const UniqueFd socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
  if (!socket) return State::absent;
  if (::connect(socket.get(), reinterpret_cast<const sockaddr*>(&address),
                static_cast<socklen_t>(length)) != 0)
    return errno == EAGAIN ? State::silent : State::absent;

  const auto greeting = ask(socket.get(), authentication(), milliseconds);
  if (greeting.empty()) return State::silent;
  if (!greeting.starts_with("OK ")) return State::answering;
  const auto reply = ask(socket.get(), "BEGIN\r\n" + hello(), milliseconds);
  return reply.size() > 1 && reply[1] != errorType ? State::answering : State::silent;
}

}  // namespace valdrix::desktop
