#include "desktop/calendarserver/CalendarServerEntry.h"

#include <algorithm>
#include <map>
#include <tuple>

#include <QColor>
#include <QRegularExpression>

namespace valdrix::desktop {

namespace {

// Parents come from strangers' files too and may go round in circles.
constexpr int deepestParent = 8;

QString unescaped(const QString& value) {
  QString plain;
  for (qsizetype i = 0; i < value.size(); ++i) {
    if (value[i] != u'\\' || i + 1 == value.size()) {
      plain += value[i];
      continue;
    }
    const QChar escaped = value[++i];
    plain += escaped == u's'   ? u' '
             : escaped == u'n' ? u'\n'
             : escaped == u't' ? u'\t'
             : escaped == u'r' ? u'\r'
                               : escaped;
  }
  return plain;
}

view::Color fromQt(const QColor& color, double alpha) {
  return {color.red() / 255.0, color.green() / 255.0, color.blue() / 255.0, alpha};
}

/// The ways in which calendar programs write colours: `#` and 3, 6 or 12 digits, `rgb()`, `rgba()`.
std::optional<view::Color> parseColor(const QString& text) {
  static const QRegularExpression numbers(QStringLiteral(
      R"(^rgba?\(\s*(\d{1,3})\s*,\s*(\d{1,3})\s*,\s*(\d{1,3})\s*(?:,\s*([0-9.]{1,20})\s*)?\)$)"));
  if (const auto match = numbers.match(text); match.hasMatch()) {
    const QColor color(match.captured(1).toInt(), match.captured(2).toInt(),
                       match.captured(3).toInt());
    const double alpha = match.captured(4).isEmpty() ? 1 : match.captured(4).toDouble();
    if (!color.isValid()) return std::nullopt;
    return fromQt(color, std::clamp(alpha, 0.0, 1.0));
  }
  const auto digits = text.size() - 1;
  const bool isHexadecimal = text.startsWith(u'#') && (digits == 3 || digits == 6 || digits == 12);
  if (!isHexadecimal || !QColor::isValidColor(text)) return std::nullopt;
  return fromQt(QColor(text), 1);
}

/// Goes through a key file and keeps what is of use.
class Reader {
 public:
  Reader(CalendarServerEntry& entry, const QStringList& languages)
      : entry_(entry), languages_(languages), languageOfName_(languages.size() + 1) {}

  void readLine(const QString& line) {
    if (line.startsWith(u'[') && line.endsWith(u']')) {
      group_ = line.sliced(1, line.size() - 2);
      if (group_ == u"Calendar") entry_.isCalendar = true;
      return;
    }
    const auto equals = line.indexOf(u'=');
    if (equals <= 0 || line.startsWith(u'#')) return;
    const auto key = line.first(equals).trimmed();
    const auto value = unescaped(line.sliced(equals + 1).trimmed());
    if (group_ == u"Data Source") readSource(key, value);
    if (group_ == u"Calendar") readCalendar(key, value);
  }

 private:
  void readSource(const QString& key, const QString& value) {
    if (key == u"Parent") entry_.parent = value.toStdString();
    if (key == u"Enabled") entry_.isEnabled = value != u"false";
    if (key.startsWith(u"DisplayName")) readName(key.sliced(11), value);
  }

  void readName(const QString& suffix, const QString& value) {
    const bool isTranslated = suffix.startsWith(u'[') && suffix.endsWith(u']');
    if (!isTranslated && !suffix.isEmpty()) return;
    const auto language =
        isTranslated ? languages_.indexOf(suffix.sliced(1, suffix.size() - 2)) : languages_.size();
    if (language < 0 || language >= languageOfName_) return;
    languageOfName_ = language;
    entry_.displayName = value.toStdString();
  }

  void readCalendar(const QString& key, const QString& value) {
    if (key == u"Color") entry_.color = parseColor(value);
  }

  CalendarServerEntry& entry_;
  const QStringList& languages_;
  qsizetype languageOfName_;
  QString group_;
};

}  // namespace

CalendarServerEntry CalendarServerEntry::parse(std::string uid, const QString& keyFile,
                                               const QStringList& languages) {
  CalendarServerEntry entry;
  entry.uid = std::move(uid);
  Reader reader(entry, languages);
  for (const auto& line : keyFile.split(u'\n')) reader.readLine(line.trimmed());
  return entry;
}

std::vector<platform::EventCalendar> calendarsAmong(
    const std::vector<CalendarServerEntry>& entries) {
  std::map<std::string_view, const CalendarServerEntry*> byUid;
  for (const auto& entry : entries) byUid[entry.uid] = &entry;
  const auto parentOf = [&](const CalendarServerEntry& entry) {
    const auto found = byUid.find(entry.parent);
    return found == byUid.end() ? nullptr : found->second;
  };

  std::vector<platform::EventCalendar> calendars;
  for (const auto& entry : entries) {
    bool isShown = entry.isCalendar;
    const auto* above = &entry;
    for (int depth = 0; isShown && above && depth < deepestParent; ++depth) {
      isShown = above->isEnabled;
      above = parentOf(*above);
    }
    if (!isShown) continue;
    auto& calendar = calendars.emplace_back();
    calendar.calendarIdentifier = entry.uid;
    calendar.title = entry.displayName;
    calendar.color = entry.color;
    if (const auto* account = parentOf(entry)) calendar.sourceTitle = account->displayName;
  }
  std::ranges::sort(calendars, {}, [](const platform::EventCalendar& calendar) {
    return std::tie(calendar.sourceTitle, calendar.title, calendar.calendarIdentifier);
  });
  return calendars;
}

}  // namespace valdrix::desktop
