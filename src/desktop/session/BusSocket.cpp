#include "desktop/session/BusSocket.h"

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <poll.h>
#include <string_view>

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

bool isReady(int fd, short events, int milliseconds) {
  pollfd wait{fd, events, 0};
  return ::poll(&wait, 1, milliseconds) == 1 && (wait.revents & events) != 0;
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

  // The greeting that asks which ways of authentication there are; any answer will do.
  constexpr std::string_view greeting("\0AUTH\r\n", 7);
  if (::send(socket.get(), greeting.data(), greeting.size(), MSG_NOSIGNAL) < 0)
    return State::silent;
  return isReady(socket.get(), POLLIN, milliseconds) ? State::answering : State::silent;
}

}  // namespace valdrix::desktop
