#pragma once

#include <csignal>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include "tests/support/SpawnedProgram.h"

namespace valdrix::tests {

enum class SoundServerKind { pulseAudio, pipeWire };

/// A real sound server without hardware, in a runtime folder of its own, that ends with this
/// object. Its outputs are null sinks. Needs a QCoreApplication; waiting runs its event loop.
class SoundServer {
 public:
  /// One output. It comes up at full volume.
  struct Sink {
    std::string name;
    int channels = 2;
  };

  /// Makes the runtime folder; nothing runs yet.
  explicit SoundServer(SoundServerKind kind = SoundServerKind::pulseAudio);
  ~SoundServer();
  SoundServer(const SoundServer&) = delete;
  SoundServer& operator=(const SoundServer&) = delete;

  /// Starts the server with `sinks`, the first one the default. Whether it answers and has them.
  bool start(const std::vector<Sink>& sinks);
  /// Ends it in good order.
  void stop();
  /// Ends it as a crash would.
  void kill();
  /// Stops all its programs where they are, as a hang would, until `resume`.
  void pause() const { signal(SIGSTOP); }
  void resume() const { signal(SIGCONT); }
  /// PipeWire only: ends the manager of the session, which decides the default sink and restores
  /// volumes, and starts it anew.
  void stopSessionManager();
  void startSessionManager();

  [[nodiscard]] const QTemporaryDir& runtimeFolder() const { return folder_; }
  /// "NAME=value", for programs that shall use this server: where it is, and nothing else.
  [[nodiscard]] std::vector<std::string> variables() const;
  /// Sets those in this process. No other thread may be running that reads the environment.
  void adoptEnvironment() const;

  // As another program would, and back only when the server has done it. Whether it did.
  bool addSink(const Sink& sink);
  bool removeSink(const std::string& name);
  bool setDefaultSink(const std::string& name);
  /// One volume for all channels or one for each; 1 is 100 %.
  bool setVolume(const std::string& sink, const std::vector<double>& volumes);
  bool setMuted(const std::string& sink, bool isMuted);

  [[nodiscard]] QString defaultSink();
  [[nodiscard]] bool hasSink(const std::string& name);
  /// Of each channel, 1 for 100 %; empty when there is no such sink.
  [[nodiscard]] std::vector<double> volumes(const std::string& sink);
  [[nodiscard]] bool isMuted(const std::string& sink);

 private:
  /// Runs the server's own command-line client; its output, or nothing when it fails.
  std::optional<QString> pactl(const QStringList& arguments) const;
  [[nodiscard]] std::unique_ptr<SpawnedProgram> spawn(std::vector<std::string> arguments) const;
  [[nodiscard]] bool waitForSocket(const QString& name) const;
  [[nodiscard]] bool isReady();
  void signal(int number) const;
  void startPulseAudio();
  void startPipeWire();

  SoundServerKind kind_;
  QTemporaryDir folder_;
  std::vector<std::unique_ptr<SpawnedProgram>> programs_;
  std::unique_ptr<SpawnedProgram> sessionManager_;
};

}  // namespace valdrix::tests
