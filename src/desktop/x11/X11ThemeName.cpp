#include "desktop/x11/X11ThemeName.h"

#include <algorithm>
#include <optional>

namespace valdrix::desktop {

namespace {

/// Takes the parts of published settings off their front, in the byte order that they say.
class SettingsReader {
 public:
  explicit SettingsReader(std::span<const std::uint8_t> bytes) : rest_(bytes) {
    isBigEndian_ = !bytes.empty() && bytes[0] == 1;
  }

  /// An unsigned number; none when fewer bytes are left.
  [[nodiscard]] std::optional<std::uint32_t> number(std::size_t size) {
    const auto bytes = take(size);
    if (bytes.size() != size) return std::nullopt;
    std::uint32_t value = 0;
    for (std::size_t i = 0; i < size; ++i) {
      const auto place = isBigEndian_ ? size - 1 - i : i;
      value |= std::uint32_t{bytes[i]} << (8 * place);
    }
    return value;
  }
  /// As many bytes as that, or as there are.
  std::span<const std::uint8_t> take(std::size_t size) {
    const auto taken = rest_.first(std::min(size, rest_.size()));
    rest_ = rest_.subspan(taken.size());
    return taken;
  }
  /// A text, which is filled up to a multiple of four bytes.
  [[nodiscard]] std::string text(std::size_t size) {
    const auto bytes = take(size);
    take((4 - size % 4) % 4);
    return {bytes.begin(), bytes.end()};
  }

 private:
  std::span<const std::uint8_t> rest_;
  bool isBigEndian_ = false;
};

enum Type : std::uint8_t { integer = 0, string = 1, color = 2 };

}  // namespace

std::string xsettingsText(std::span<const std::uint8_t> settings, std::string_view name) {
  SettingsReader reader(settings);
  reader.take(8);  // the byte order and a serial number
  const auto count = reader.number(4).value_or(0);
  for (std::uint32_t i = 0; i < count; ++i) {
    const auto type = reader.number(1);
    reader.take(1);
    const auto length = reader.number(2);
    if (!length || *type > color) return {};
    const auto found = reader.text(*length);
    reader.take(4);  // a serial number
    const auto size = *type == string ? reader.number(4) : std::optional(*type == color ? 8U : 4U);
    if (!size) return {};
    const auto value = reader.text(*size);
    if (found == name) return *type == string && value.size() == *size ? value : std::string();
  }
  return {};
}

X11ThemeName::X11ThemeName(X11Connection& connection)
    : connection_(connection), manager_(connection, X11Manager::settings) {
  if (!connection_.isUsable()) return;
  property_ = connection_.atom("_XSETTINGS_SETTINGS");
  managerWatch_ = manager_.observeChanges([this] { follow(); });
  eventHandler_ = connection_.addEventHandler([this](const xcb_generic_event_t& event) {
    if (eventType(event) != XCB_PROPERTY_NOTIFY) return;
    const auto& change = eventAs<xcb_property_notify_event_t>(event);
    if (change.window == manager_.owner() && change.atom == property_) read();
  });
  follow();
}

void X11ThemeName::follow() {
  const std::uint32_t mask = XCB_EVENT_MASK_PROPERTY_CHANGE;
  if (manager_.isActive())
    xcb_change_window_attributes(connection_.get(), manager_.owner(), XCB_CW_EVENT_MASK, &mask);
  read();
}

void X11ThemeName::read() {
  constexpr std::uint32_t mostWords = 1U << 16;
  std::string name;
  if (manager_.isActive()) {
    const auto property = connection_.reply(
        xcb_get_property_reply, xcb_get_property(connection_.get(), 0, manager_.owner(), property_,
                                                 XCB_GET_PROPERTY_TYPE_ANY, 0, mostWords));
    if (property)
      name =
          xsettingsText({static_cast<const std::uint8_t*>(xcb_get_property_value(property.get())),
                         static_cast<std::size_t>(xcb_get_property_value_length(property.get()))},
                        "Net/ThemeName");
  }
  if (std::exchange(name_, name) != name) observers_.notify();
}

}  // namespace valdrix::desktop
