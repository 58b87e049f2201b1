#include "desktop/shortcuts/SettingChange.h"

#include <algorithm>

#include <QString>

#include "desktop/shortcuts/GVariantStrings.h"

namespace valdrix::desktop {

namespace {

using Value = SettingStore::Value;
using Texts = std::vector<std::string>;

std::optional<GVariantStrings> strings(const Value& value) {
  return value ? GVariantStrings::parse(*value) : std::nullopt;
}

// Shortcuts are written in any case: <shift>XF86AudioMute.
bool contains(const Texts& texts, const std::string& text) {
  return std::ranges::any_of(texts, [&](const std::string& one) {
    return QString::fromStdString(one).compare(QString::fromStdString(text), Qt::CaseInsensitive) ==
           0;
  });
}

void removeAll(GVariantStrings& value, const Texts& removed) {
  std::erase_if(value.strings, [&](const std::string& one) { return contains(removed, one); });
}

std::optional<Value> removed(const Value& base, const Texts& texts, bool isTouched) {
  auto value = strings(base);
  if (!value) return std::nullopt;
  removeAll(*value, texts);
  // An empty name among shortcuts stands for none.
  if (isTouched && value->isList && std::erase(value->strings, std::string()) == 0)
    value->strings.emplace_back();
  return value->text();
}

std::optional<Value> added(const Value& base, const Texts& texts) {
  auto value = base ? strings(base) : GVariantStrings{.isList = true, .strings = {}};
  if (!value || !value->isList) return std::nullopt;
  for (const auto& text : texts)
    if (!contains(value->strings, text)) value->strings.push_back(text);
  return value->text();
}

Value restored(const Value& current, const Texts& texts) {
  auto value = strings(current);
  if (!value) return std::nullopt;
  if (!value->isList) value->strings.clear();
  value->strings.insert(value->strings.begin(), texts.begin(), texts.end());
  return value->text();
}

/// The off of a value that is written as type:text.
std::optional<Value> switchedOff(const Value& base) {
  if (!base || base->starts_with("bool:")) return "bool:false";
  const auto type = base->substr(0, base->find(':'));
  if (type != "int" && type != "uint") return std::nullopt;
  return type + ":0";
}

}  // namespace

std::optional<Value> SettingChange::applied(const Value& base) const {
  switch (kind) {
    case Kind::assign:
      return texts.front();
    case Kind::switchOff:
      return switchedOff(base);
    case Kind::remove:
    case Kind::removeAndTouch:
      return removed(base, texts, kind == Kind::removeAndTouch);
    case Kind::add:
      break;
  }
  return added(base, texts);
}

bool SettingChange::isEvidentIn(const Value& current) const {
  if (!current) return false;
  const bool hasAny = withoutElements(current, texts) != current;
  switch (kind) {
    case Kind::assign:
    case Kind::switchOff:
      return applied(current) == std::optional(current);
    case Kind::remove:
    case Kind::removeAndTouch:
      return !hasAny;
    case Kind::add:
      break;
  }
  return hasAny;
}

Value SettingChange::undone(const Value& current) const {
  switch (kind) {
    case Kind::assign:
    case Kind::switchOff:
      return std::nullopt;
    case Kind::remove:
      return restored(current, texts);
    case Kind::removeAndTouch:
      return applied(current).value_or(std::nullopt);
    case Kind::add:
      break;
  }
  return withoutElements(current, texts);
}

Value withoutElements(const Value& list, const Texts& removed) {
  auto value = strings(list);
  if (!value) return list;
  const auto count = value->strings.size();
  removeAll(*value, removed);
  return value->strings.size() == count ? list : value->text();
}

}  // namespace valdrix::desktop
