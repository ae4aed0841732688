#include "settings/inifile.h"

#include <algorithm>
#include <vector>

#include "settings/utf8.h"

namespace qv3 {

namespace {

using std::size_t;
using std::string_view;

constexpr string_view kBlanks = " \t\v\f\x1a";

string_view withoutTrailingBlanks(string_view text) {
  return text.substr(0, text.find_last_not_of(kBlanks) + 1);
}

string_view withoutLeadingBlanks(string_view text) {
  return text.substr(std::min(text.find_first_not_of(kBlanks), text.size()));
}

string_view trimmed(string_view text) {
  return withoutLeadingBlanks(withoutTrailingBlanks(text));
}

string_view withoutQuotes(string_view text) {
  if (text.size() < 2 || text.front() != text.back()) return text;
  const bool quoted = text.front() == '"' || text.front() == '\'';
  return quoted ? text.substr(1, text.size() - 2) : text;
}

char lowerCase(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool sameName(string_view a, string_view b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](char x, char y) { return lowerCase(x) == lowerCase(y); });
}

/// One line: offsets into the file and the text between them, without the line's end.
struct Line {
  size_t start = 0;
  size_t next = 0;
  string_view text;

  size_t end() const { return start + text.size(); }
  bool isBlank() const { return trimmed(text).empty(); }
  std::optional<string_view> sectionName() const;
  std::optional<string_view> keyName() const;
  /// Offset of what follows the "="; of keys only.
  size_t valueStart() const { return start + text.find('=') + 1; }
};

std::optional<string_view> Line::sectionName() const {
  const string_view line = withoutLeadingBlanks(text);
  const size_t last = line.rfind(']');
  if (line.empty() || line.front() != '[' || last == string_view::npos) return std::nullopt;
  return trimmed(line.substr(1, last - 1));
}

std::optional<string_view> Line::keyName() const {
  const size_t split = text.find('=');
  if (split == string_view::npos || sectionName()) return std::nullopt;
  return trimmed(text.substr(0, split));
}

size_t lineEndLength(string_view file, size_t at) {
  if (at >= file.size()) return 0;
  return file.substr(at, 2) == "\r\n" ? 2 : 1;
}

std::vector<Line> linesOf(string_view file) {
  std::vector<Line> lines;
  size_t start = file.substr(0, kUtf8Mark.size()) == kUtf8Mark ? kUtf8Mark.size() : 0;
  while (start < file.size()) {
    const size_t end = std::min(file.find_first_of("\r\n", start), file.size());
    const size_t next = end + lineEndLength(file, end);
    lines.push_back({start, next, file.substr(start, end - start)});
    start = next;
  }
  return lines;
}

/// The lines of one section, the "[...]" line first.
using Section = std::vector<Line>;

std::optional<Section> findSection(const std::vector<Line>& lines, string_view name) {
  const auto isHeader = [](const Line& line) { return line.sectionName().has_value(); };
  const auto header = std::find_if(lines.begin(), lines.end(), [&](const Line& line) {
    return isHeader(line) && sameName(*line.sectionName(), trimmed(name));
  });
  if (header == lines.end()) return std::nullopt;
  return Section(header, std::find_if(header + 1, lines.end(), isHeader));
}

std::optional<Line> findKey(const Section& section, string_view name) {
  const auto key = std::find_if(section.begin(), section.end(), [&](const Line& line) {
    return line.keyName() && sameName(*line.keyName(), trimmed(name));
  });
  if (key == section.end()) return std::nullopt;
  return *key;
}

string_view valueOf(string_view file, const Line& line) {
  const string_view value = file.substr(line.valueStart(), line.end() - line.valueStart());
  return withoutQuotes(trimmed(value.substr(0, value.find('\0'))));
}

std::string sectionNames(const std::vector<Line>& lines) {
  std::string names;
  for (const Line& line : lines) {
    if (const auto name = line.sectionName()) names.append(*name).push_back('\0');
  }
  return names;
}

std::string keyNames(const Section& section) {
  std::string names;
  for (const Line& line : section) {
    const auto name = line.keyName();
    if (name && name->substr(0, 1) != ";") names.append(*name).push_back('\0');
  }
  return names;
}

/// A list needs two zeros at its end, the second beyond what is returned.
std::string cutList(std::string names, size_t size) {
  if (size < names.size() + 1) names.resize(size < 2 ? 0 : size - 2);
  return names;
}

std::string cutText(string_view text, size_t size) {
  return std::string(text.substr(0, size == 0 ? 0 : size - 1));
}

/// How a line put in at `at` ends: as the line before it, else as the file's first.
std::string newLineEnd(string_view file, const std::vector<Line>& lines, size_t at) {
  std::string result = "\r\n";
  for (auto line = lines.rbegin(); line != lines.rend(); ++line) {
    if (line->end() == line->next) continue;
    result = file.substr(line->end(), line->next - line->end());
    if (line->next <= at) break;
  }
  return result;
}

/// Puts whole lines in at the end of a line, which gets its own end if it has none yet.
void insertLines(std::string& file, const std::vector<Line>& lines, size_t at,
                 const std::vector<std::string>& inserted) {
  const std::string lineEnd = newLineEnd(file, lines, at);
  const bool open = !lines.empty() && lines.back().next == at && lines.back().end() == at;
  std::string block = open ? lineEnd : "";
  for (const std::string& line : inserted) block += line + lineEnd;
  file.insert(at, block);
}

void setValue(std::string& file, string_view section, string_view key, string_view value) {
  const std::string written(withoutLeadingBlanks(value));
  const std::string entry = std::string(trimmed(key)) + "=" + written;
  const std::vector<Line> lines = linesOf(file);
  const std::optional<Section> found = findSection(lines, section);
  if (!found) {
    insertLines(file, lines, file.size(), {"[" + std::string(trimmed(section)) + "]", entry});
  } else if (const std::optional<Line> line = findKey(*found, key)) {
    file.replace(line->valueStart(), line->end() - line->valueStart(), written);
  } else {
    const auto last = std::find_if(found->rbegin(), found->rend(),
                                   [](const Line& candidate) { return !candidate.isBlank(); });
    insertLines(file, lines, last->next, {entry});
  }
}

void removeLines(std::string& file, string_view section, std::optional<string_view> key) {
  const std::optional<Section> found = findSection(linesOf(file), section);
  if (!found) return;
  if (!key) {
    file.erase(found->front().start, found->back().next - found->front().start);
  } else if (const std::optional<Line> line = findKey(*found, *key)) {
    file.erase(line->start, line->next - line->start);
  }
}

}  // namespace

std::string readIni(const std::optional<std::string>& file, std::optional<string_view> section,
                    std::optional<string_view> key, string_view defaultText, size_t size) {
  const std::vector<Line> lines = linesOf(file ? string_view(*file) : string_view());
  if (file && !section) return cutList(sectionNames(lines), size);
  const std::optional<Section> found = section ? findSection(lines, *section) : std::nullopt;
  if (found && !key) return cutList(keyNames(*found), size);
  const std::optional<Line> line = found ? findKey(*found, *key) : std::nullopt;
  return cutText(line ? valueOf(*file, *line) : withoutQuotes(withoutTrailingBlanks(defaultText)),
                 size);
}

bool WriteIniString(std::optional<std::string>& file, std::optional<string_view> section,
                    std::optional<string_view> key, std::optional<string_view> value) {
  if (!section) return false;
  if (key && value) {
    if (!file) file.emplace();
    setValue(*file, *section, *key, *value);
  } else if (file) {
    removeLines(*file, *section, key);
  }
  return true;
}

std::string ReadIniString(const std::optional<std::string>& file, string_view section,
                          string_view key, string_view defaultText) {
  return firstCharacters(textFromBytes(readIni(file, section, key, defaultText)), kIniValueLimit);
}

StoreResult editIniFile(TextStore& store, const std::string& path,
                        const std::function<void(std::optional<std::string>& file)>& edit) {
  std::optional<std::string> file = store.read(path);
  if (!file && store.exists(path)) return {"The file cannot be read"};
  edit(file);
  return file ? store.replace(path, *file) : StoreResult{};
}

}  // namespace qv3
