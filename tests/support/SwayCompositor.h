#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <QByteArray>
#include <QImage>
#include <QJsonArray>
#include <QTemporaryDir>

#include "tests/support/SpawnedProgram.h"

namespace valdrix::tests {

/// A Wayland compositor of its own without a monitor, that ends with this object: by itself with
/// one output of 1500 by 1000, or in windows of another one, where outputs can be unplugged. Needs
/// no event loop.
class SwayCompositor {
 public:
  /// `host`, if any, shows it in windows and outlives it. `settings` are further lines of its
  /// configuration.
  explicit SwayCompositor(SwayCompositor* host = nullptr, const std::string& settings = {});
  ~SwayCompositor();
  SwayCompositor(const SwayCompositor&) = delete;
  SwayCompositor& operator=(const SwayCompositor&) = delete;

  [[nodiscard]] bool isRunning() { return program_ && program_->isRunning(); }
  /// What XDG_RUNTIME_DIR and WAYLAND_DISPLAY must say.
  [[nodiscard]] std::string folder() const { return folder_.path().toStdString(); }
  [[nodiscard]] std::string display() const { return display_; }
  /// Makes this process's next connection go there.
  void enter() const;

  /// Starts it; also again after `stop`. Whether it answers.
  bool start();
  void stop();

  /// What a monitor would show now, in device pixels.
  [[nodiscard]] QImage screenshot() const;
  /// Carries out one of its commands; whether it could.
  bool command(const std::string& words);
  /// The names of its outputs.
  [[nodiscard]] std::vector<std::string> outputs();
  /// Adds an output; its name.
  std::string addOutput();
  /// Gives an output of one that is shown in windows another size.
  void resizeOutput(const std::string& name, int width, int height);
  /// Takes away an output of one that is shown in windows.
  void removeOutput(const std::string& name);

 private:
  /// Sends a question and leaves the connection to the caller.
  [[nodiscard]] int send(std::uint32_t kind, const std::string& words) const;
  [[nodiscard]] QByteArray ask(std::uint32_t kind, const std::string& words) const;
  /// Looks at the names of the outputs each time that there is news of them.
  bool awaitOutputs(const std::function<bool(const std::vector<std::string>&)>& condition);
  [[nodiscard]] std::string socket(const char* pattern) const;

  SwayCompositor* host_;
  QTemporaryDir folder_;
  std::string display_;
  std::unique_ptr<SpawnedProgram> program_;
};

}  // namespace valdrix::tests
