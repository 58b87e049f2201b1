#include "desktop/display/ActiveDisplay.h"

#include <algorithm>
#include <tuple>

namespace valdrix::desktop {
namespace {

/// How surely a backlight belongs to a panel, best first.
enum class Link { connector, card, machine };

struct Candidate {
  const Backlight* backlight;
  Link link;
  std::string display;

  [[nodiscard]] auto rank() const { return std::tie(backlight->type, link, backlight->name); }
};

class Chooser {
 public:
  explicit Chooser(const BacklightTree& tree)
      : tree_(tree), isAnyEnabled_(std::ranges::any_of(tree.connectors, &Connector::isEnabled)) {}

  // Where no connector counts as enabled, the display server drives them in a way that the kernel
  // doesn't see, and their not being enabled tells nothing.
  [[nodiscard]] bool isActive(const Connector& connector) const {
    return connector.isConnected && (connector.isEnabled || !isAnyEnabled_);
  }

  [[nodiscard]] std::optional<Candidate> best() const {
    std::optional<Candidate> best;
    for (const auto& backlight : tree_.backlights) {
      auto candidate = consider(backlight);
      if (candidate && (!best || candidate->rank() < best->rank())) best = std::move(candidate);
    }
    return best;
  }

 private:
  [[nodiscard]] std::optional<Candidate> consider(const Backlight& backlight) const {
    if (backlight.isAttached || backlight.maxBrightness == 0) return std::nullopt;
    const auto [link, panels] = panelsOf(backlight);
    const auto panel =
        std::ranges::find_if(panels, [this](const auto* each) { return isActive(*each); });
    if (panel != panels.end()) return Candidate{&backlight, link, (*panel)->name};
    if (!panels.empty() || link == Link::connector) return std::nullopt;
    return Candidate{&backlight, link, backlight.name};
  }

  [[nodiscard]] std::pair<Link, std::vector<const Connector*>> panelsOf(
      const Backlight& backlight) const {
    if (!backlight.connector.empty())
      return {Link::connector,
              panelsWhere([&](const Connector& c) { return c.name == backlight.connector; })};
    auto panels = panelsWhere([&](const Connector& c) {
      return std::ranges::find(backlight.cards, c.card()) != backlight.cards.end();
    });
    if (!panels.empty()) return {Link::card, std::move(panels)};
    return {Link::machine, panelsWhere([](const Connector&) { return true; })};
  }

  [[nodiscard]] std::vector<const Connector*> panelsWhere(auto condition) const {
    std::vector<const Connector*> panels;
    for (const auto& connector : tree_.connectors)
      if (connector.isPanel() && condition(connector)) panels.push_back(&connector);
    return panels;
  }

  const BacklightTree& tree_;
  bool isAnyEnabled_;
};

}  // namespace

std::vector<ActiveDisplay> activeDisplays(const BacklightTree& tree) {
  const Chooser chooser(tree);
  const auto best = chooser.best();
  std::vector<ActiveDisplay> displays;
  if (best) displays.push_back({best->display, true, *best->backlight});
  for (const auto& connector : tree.connectors)
    if (chooser.isActive(connector) && !(best && best->display == connector.name))
      displays.push_back({connector.name, connector.isPanel(), std::nullopt});
  return displays;
}

}  // namespace valdrix::desktop
