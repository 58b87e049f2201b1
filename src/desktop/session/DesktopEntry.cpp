#include "desktop/session/DesktopEntry.h"

#include <algorithm>
#include <filesystem>

#include <QFile>
#include <QStandardPaths>

#include "desktop/session/WholeFile.h"

namespace valdrix::desktop {

namespace {

constexpr std::size_t largestFile = std::size_t{4} << 20;

/// A value of type string with its escapes replaced.
QString unescaped(const QString& value) {
  QString text;
  for (qsizetype i = 0; i < value.size(); ++i) {
    static const QString codes = "sntr\\";
    static const QString meanings = " \n\t\r\\";
    const auto code = value[i] == '\\' && i + 1 < value.size() ? codes.indexOf(value[i + 1]) : -1;
    text += code < 0 ? value[i] : meanings[code];
    if (code >= 0) ++i;
  }
  return text;
}

/// The words of an Exec value: separated by spaces, or in double quotes, in which a backslash
/// stands before characters that a shell would take for its own.
QStringList wordsOf(const QString& exec) {
  QStringList words;
  QString word;
  bool isWord = false;
  bool isQuoted = false;
  for (qsizetype i = 0; i < exec.size(); ++i) {
    const QChar c = exec[i];
    if (c == '"') {
      isQuoted = !isQuoted;
      isWord = true;
    } else if (!isQuoted && c.isSpace()) {
      if (isWord) words.append(word);
      word.clear();
      isWord = false;
    } else {
      const bool isEscape = isQuoted && c == '\\' && i + 1 < exec.size();
      word += isEscape ? exec[++i] : c;
      isWord = true;
    }
  }
  if (isWord) words.append(word);
  return words;
}

/// What a field code becomes; nothing for one that stands for what is not there.
QString meaning(QChar code, const QString& url, const QString& name, const QString& file) {
  switch (code.unicode()) {
    case 'f':
    case 'F':
    case 'u':
    case 'U':
      return url;
    case 'c':
      return name;
    case 'k':
      return file;
    case '%':
      return "%";
    default:
      return {};
  }
}

bool takesUrl(const QString& word) { return word.contains("%u") || word.contains("%U"); }

}  // namespace

KeyFileGroup::KeyFileGroup(const QString& file, const QString& group) {
  const auto content = readWholeFile(QFile::encodeName(file).toStdString(), largestFile);
  const auto text = QString::fromStdString(content.bytes);
  bool isInGroup = false;
  for (const auto& rawLine : QStringView(text).split('\n')) {
    const auto line = rawLine.trimmed();
    if (line.startsWith('[')) {
      isInGroup = line == '[' + group + ']';
    } else if (isInGroup && !line.startsWith('#')) {
      lines_.append(line.toString());
    }
  }
}

QString KeyFileGroup::value(const QString& key) const {
  for (const auto& line : lines_) {
    const auto equals = line.indexOf('=');
    if (equals > 0 && QStringView(line).left(equals).trimmed() == key)
      return line.mid(equals + 1).trimmed();
  }
  return {};
}

QStringList KeyFileGroup::list(const QString& key) const {
  return value(key).split(';', Qt::SkipEmptyParts);
}

QString DesktopEntry::programOf(const QString& exec) {
  return wordsOf(exec).value(0).replace("%%", "%");
}

QString DesktopEntry::execOf(const QString& program) {
  QString word;
  for (const QChar c : program) {
    if (QStringView(u"\"`$\\").contains(c)) word += '\\';
    // A field code begins with it.
    word += c == '%' ? QString("%%") : QString(c);
  }
  const bool isPlain = std::all_of(program.begin(), program.end(), [](QChar c) {
    return c.isLetterOrNumber() || QStringView(u"/._-+:@%").contains(c);
  });
  return isPlain ? word : '"' + word + '"';
}

bool DesktopEntry::isInstalled(const QString& program) {
  return !QStandardPaths::findExecutable(program).isEmpty();
}

std::optional<DesktopEntry> DesktopEntry::read(const QString& file) {
  const KeyFileGroup keys(file, "Desktop Entry");
  DesktopEntry entry;
  const auto exec = unescaped(keys.value("Exec"));
  entry.words_ = wordsOf(exec);
  entry.name_ = unescaped(keys.value("Name"));
  entry.file_ = file;
  const auto tryExec = unescaped(keys.value("TryExec"));
  const bool isUsable = keys.value("Type") == "Application" && keys.value("Hidden") != "true" &&
                        keys.value("Terminal") != "true" && isInstalled(programOf(exec)) &&
                        (tryExec.isEmpty() || isInstalled(tryExec));
  if (!isUsable) return std::nullopt;
  return entry;
}

QStringList DesktopEntry::command() const { return expanded({}); }

std::optional<QStringList> DesktopEntry::command(const QString& url) const {
  if (std::none_of(words_.begin(), words_.end(), takesUrl)) return std::nullopt;
  return expanded(url);
}

QStringList DesktopEntry::expanded(const QString& url) const {
  QStringList words;
  for (const auto& word : words_) {
    QString result;
    bool hasCode = false;
    for (qsizetype i = 0; i < word.size(); ++i) {
      const bool isCode = word[i] == '%' && i + 1 < word.size();
      hasCode |= isCode;
      result += isCode ? meaning(word[++i], url, name_, file_) : QString(word[i]);
    }
    // A code that stands for nothing is no empty argument.
    if (!hasCode || !result.isEmpty()) words.append(result);
  }
  return words;
}

}  // namespace valdrix::desktop
