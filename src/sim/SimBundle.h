#pragma once

#include <map>
#include <string>
#include <utility>

#include "platform/Bundle.h"

namespace valdrix::sim {

/// A program built as the simulation likes; version 1.2, build 7, at first.
class SimBundle final : public platform::Bundle {
 public:
  [[nodiscard]] std::optional<std::string> infoText(std::string_view key) const override {
    const auto entry = texts_.find(key);
    return entry == texts_.end() ? std::nullopt : std::optional(entry->second);
  }
  void setInfoText(std::string key, std::string text) {
    texts_.insert_or_assign(std::move(key), std::move(text));
  }
  /// Nothing is known of the program any more.
  void forgetInfo() { texts_.clear(); }

 private:
  std::map<std::string, std::string, std::less<>> texts_{{std::string(shortVersionString), "1.2"},
                                                         {std::string(version), "7"}};
};

}  // namespace valdrix::sim
