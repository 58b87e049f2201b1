#include "sim/SceneLines.h"

#include <array>
#include <cmath>
#include <cstdio>

namespace valdrix::sim {

namespace {

std::string colorText(const view::Color& color) {
  const auto channel = [](double value) { return static_cast<unsigned>(std::lround(value * 255)); };
  std::array<char, 8> text{};
  std::snprintf(text.data(), text.size(), "%02x%02x%02x", channel(color.red) & 0xFFU,
                channel(color.green) & 0xFFU, channel(color.blue) & 0xFFU);
  return text.data();
}

std::string dimmed(view::Prominence prominence) {
  return prominence == view::Prominence::secondary ? " (dimmed)" : "";
}

struct TrailingText {
  std::string operator()(const view::ValueText& value) const { return value.text; }
  std::string operator()(const view::Badge& badge) const {
    auto text = badge.label + dimmed(badge.prominence);
    if (badge.symbol) text += " (" + *badge.symbol + ' ' + colorText(badge.symbolColor) + ')';
    return text;
  }
};

struct RowText {
  std::string operator()(const view::Toggle& toggle) const {
    const auto& [title, dot, detail] = toggle.label;
    return "toggle " + title + (detail ? ' ' + *detail : "") +
           (dot ? " (" + colorText(*dot) + ')' : "") + (toggle.isOn ? ": on" : ": off");
  }
  std::string operator()(const view::LabeledRow& row) const {
    return "row " + row.title + ": " + std::visit(TrailingText(), row.content);
  }
  std::string operator()(const view::Stepper& stepper) const {
    return "stepper " + stepper.title + ": " + stepper.valueText + " (" +
           std::to_string(stepper.value) + " of " + std::to_string(stepper.minimum) + " to " +
           std::to_string(stepper.maximum) + ')';
  }
  std::string operator()(const view::Slider& slider) const {
    return "slider " + slider.title + ": " + formatNumber(slider.value) + " (" +
           slider.minimumLabel + " to " + slider.maximumLabel + ')';
  }
  std::string operator()(const view::PushButton& button) const { return "button " + button.title; }
  std::string operator()(const view::FormText& text) const {
    return (text.isCode ? "code " : "text ") + text.text + dimmed(text.prominence);
  }
};

void addSection(const view::FormSection& section, std::vector<SeenLine>& lines) {
  const auto key = [&](const std::string& part) { return section.header + '/' + part; };
  lines.push_back({key("header"), "section " + section.header});
  std::size_t place = 0;
  for (const auto& row : section.rows) {
    const auto part = row.id.empty() ? "place " + std::to_string(place) : "id " + row.id;
    lines.push_back({key(part), std::visit(RowText(), row.content)});
    ++place;
  }
  if (!section.footer.empty()) lines.push_back({key("footer"), "footer " + section.footer});
  if (section.link) lines.push_back({key("link"), "link " + section.link->title});
}

struct ContentLines {
  std::vector<SeenLine> operator()(const view::Form& form) const {
    std::vector<SeenLine> lines;
    for (const auto& section : form.sections) addSection(section, lines);
    return lines;
  }
  std::vector<SeenLine> operator()(const view::AboutPanel& panel) const {
    return {{"image", "image " + panel.image},
            {"name", "name " + panel.name},
            {"version", "version " + panel.version},
            {"description", "description " + panel.description},
            {"button", "button " + panel.button.title + " (" + panel.button.symbol + ')'},
            {"legalNotice", "legal " + panel.legalNotice}};
  }
};

struct ItemText {
  std::string operator()(const view::MenuCommand& command) const {
    return command.title +
           (command.shortcut ? std::string(" (") + command.shortcut->key + ')' : "");
  }
  std::string operator()(const view::MenuSeparator& /*separator*/) const { return "-"; }
};

}  // namespace

std::vector<SeenLine> linesOf(const platform::MenuBarExtra& extra, const view::Menu& menu) {
  std::string text = "shows";
  const char* gap = " ";
  for (const auto& item : menu.items) {
    text += gap + std::visit(ItemText(), item);
    gap = " | ";
  }
  return {{"item", "item " + extra.title + " (" + extra.symbol + ')'}, {"menu", text}};
}

std::vector<SeenLine> linesOf(const view::TabContent& content) {
  return std::visit(ContentLines(), content);
}

}  // namespace valdrix::sim
