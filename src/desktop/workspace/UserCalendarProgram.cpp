#include <algorithm>
#include <utility>
#include <vector>

#include "desktop/session/IniDocument.h"
#include "desktop/session/WholeFile.h"
#include "desktop/workspace/CalendarPrograms.h"

namespace valdrix::desktop {

namespace {

constexpr std::size_t largestFile = std::size_t{1} << 20;

/// A name in braces, and what it stands for; empty when that is not known.
using NamedText = std::pair<QString, QString>;

QStringList wordsOf(const QString& text) {
  QStringList words;
  QString word;
  bool isWord = false;
  QChar quote;
  for (const QChar c : text) {
    const bool isQuote = quote.isNull() ? c == '"' || c == '\'' : c == quote;
    if (isQuote) {
      quote = quote.isNull() ? c : QChar();
      isWord = true;
    } else if (quote.isNull() && c.isSpace()) {
      if (isWord) words.append(std::exchange(word, {}));
      isWord = false;
    } else {
      word += c;
      isWord = true;
    }
  }
  if (isWord) words.append(word);
  return words;
}

/// `word` with the names in it replaced, once and from left to right, so that braces in the data
/// mean nothing. Nothing when one of the data is missing.
std::optional<QString> filled(const QString& word, const std::vector<NamedText>& names) {
  QString result;
  for (qsizetype i = 0; i < word.size();) {
    const auto found = std::find_if(names.begin(), names.end(), [&](const NamedText& each) {
      return QStringView(word).mid(i).startsWith(each.first);
    });
    if (found == names.end()) {
      result += word[i++];
    } else {
      if (found->second.isEmpty()) return std::nullopt;
      result += found->second;
      i += found->first.size();
    }
  }
  return result;
}

/// Nothing when data are missing, or would be taken for an option.
std::optional<QStringList> filled(const QStringList& words, const std::vector<NamedText>& names) {
  QStringList command;
  for (const auto& word : words) {
    const auto argument = filled(word, names);
    const bool isOption = argument && argument->startsWith('-') && !word.startsWith('-');
    if (!argument || (isOption && !command.contains("--"))) return std::nullopt;
    command.append(*argument);
  }
  return command;
}

std::vector<NamedText> namedTexts(QDate day, const QString& identifier) {
  const bool isKnown = day.isValid();
  return {{"{date}", isKnown ? day.toString(Qt::ISODate) : QString()},
          {"{year}", isKnown ? day.toString("yyyy") : QString()},
          {"{month}", isKnown ? day.toString("MM") : QString()},
          {"{day}", isKnown ? day.toString("dd") : QString()},
          {"{identifier}", identifier}};
}

/// Whether no name stands in the first word, where it would let data choose the program.
bool hasFixedProgram(const QStringList& words) {
  return filled(words.value(0), namedTexts({}, {})).has_value();
}

class UserCalendarProgram final : public CalendarProgram {
 public:
  UserCalendarProgram(QStringList showDay, QStringList showEvent)
      : showDay_(std::move(showDay)), showEvent_(std::move(showEvent)) {}

  [[nodiscard]] std::optional<QStringList> showDay(QDate day) const override {
    if (showDay_.isEmpty()) return std::nullopt;
    return filled(showDay_, namedTexts(day, {}));
  }
  [[nodiscard]] std::optional<QStringList> showEvent(const CalendarEventName& event,
                                                     QDate day) const override {
    if (showEvent_.isEmpty()) return std::nullopt;
    return filled(showEvent_, namedTexts(day, event.identifier));
  }

 private:
  QStringList showDay_;
  QStringList showEvent_;
};

}  // namespace

std::unique_ptr<CalendarProgram> userCalendarProgram(const std::filesystem::path& file) {
  const IniDocument document(readWholeFile(file, largestFile).bytes);
  const auto words = [&](const char* key) {
    const auto found = document.values().find(key);
    if (found == document.values().end()) return QStringList();
    const auto command = wordsOf(QString::fromStdString(found->second));
    return hasFixedProgram(command) ? command : QStringList();
  };
  auto showDay = words("showDay");
  auto showEvent = words("showEvent");
  if (showDay.isEmpty() && showEvent.isEmpty()) return nullptr;
  return std::make_unique<UserCalendarProgram>(std::move(showDay), std::move(showEvent));
}

}  // namespace valdrix::desktop
