#pragma once

#include <optional>
#include <string>

namespace valdrix::desktop {

/// The socket at which a message bus listens.
class BusSocket {
 public:
  enum class State {
    absent,     ///< nobody listens
    silent,     ///< somebody listens but does not react, or takes nobody in
    answering,  ///< a bus is there, as far as can be told
  };

  /// `address` as in DBUS_SESSION_BUS_ADDRESS; of a list the first counts.
  explicit BusSocket(std::string address) : address_(std::move(address)) {}

  /// The socket's file, where it has one.
  [[nodiscard]] std::optional<std::string> path() const;
  /// What the bus says to somebody who joins it, waiting for each answer no longer than
  /// `milliseconds`. Addresses other than local sockets are taken to answer, and so is a bus that
  /// wants another proof of who we are than the socket gives.
  [[nodiscard]] State probe(int milliseconds) const;

 private:
  std::string address_;
};

}  // namespace valdrix::desktop
