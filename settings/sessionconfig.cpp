#include "settings/sessionconfig.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <optional>
#include <string_view>
#include <utility>

#include "settings/conversions.h"
#include "settings/utf8.h"

namespace qv3 {

namespace {

constexpr const char* kConfigName = "qv3_Varnel.cfg";

/// Takes one value after the other off a sequential text.
class ValueReader {
 public:
  explicit ValueReader(std::string_view text) : m_rest(text) {
    if (m_rest.substr(0, kUtf8Mark.size()) == kUtf8Mark) m_rest.remove_prefix(kUtf8Mark.size());
  }

  /// Nothing at the text's end, if the closing quote is missing, or if something follows it.
  std::optional<std::string> text() {
    skip(" \t");
    if (m_rest.empty()) return std::nullopt;
    if (m_rest.front() != '"') return std::string(plain());
    std::optional<std::string> value = quoted();
    skip(" \t");
    if (!m_rest.empty() && kEnds.find(m_rest.front()) == std::string_view::npos) return {};
    skipEnd();
    return value;
  }

  /// The characters of an unquoted value.
  std::string_view plain() {
    skip(" \t");
    const std::string_view value = m_rest.substr(0, m_rest.find_first_of(kEnds));
    m_rest.remove_prefix(value.size());
    skipEnd();
    return value.substr(0, value.find_last_not_of(" \t") + 1);
  }

 private:
  static constexpr std::string_view kEnds = ",\r\n";

  std::optional<std::string> quoted() {
    std::string value;
    while (m_rest.size() > 1) {
      m_rest.remove_prefix(1);
      const std::size_t quote = m_rest.find('"');
      if (quote == std::string_view::npos) break;
      value += m_rest.substr(0, quote);
      m_rest.remove_prefix(quote + 1);
      if (m_rest.empty() || m_rest.front() != '"') return value;
      value += '"';
    }
    return std::nullopt;
  }

  void skip(std::string_view characters) {
    m_rest.remove_prefix(std::min(m_rest.find_first_not_of(characters), m_rest.size()));
  }

  void skipEnd() {
    if (m_rest.substr(0, 2) == "\r\n") m_rest.remove_prefix(1);
    if (!m_rest.empty()) m_rest.remove_prefix(1);
  }

  std::string_view m_rest;
};

template <typename Value>
bool take(std::optional<Value> value, Value& field) {
  if (value) field = *std::move(value);
  return value.has_value();
}

bool takeInteger(ValueReader& reader, std::int16_t& field) {
  return take(toInteger(reader.plain()), field);
}

std::string quotedText(const std::string& text) {
  std::string quoted = "\"";
  for (const char c : text) quoted.append(c == '"' ? 2 : 1, c);
  return quoted + "\"";
}

/// The value has to be readable as an Integer again.
std::string windowNumber(double value) {
  using Limits = std::numeric_limits<std::int16_t>;
  return fromDouble(std::clamp<double>(value, Limits::min(), Limits::max()));
}

}  // namespace

SessionConfigFile::SessionConfigFile(TextStore& store,
                                     std::function<StoreResult()> enterStateFolder)
    : m_store(store), m_enterStateFolder(std::move(enterStateFolder)) {}

bool SessionConfigFile::ReadSessionConfig(ProgramSettings& settings) const {
  const std::optional<std::string> file = m_store.read(kConfigName);
  if (!file) return false;
  ValueReader reader(*file);
  WindowPlacement& window = settings.WindowGeometry;
  return take(reader.text(), settings.IniPath) &&
         take(toLong(reader.plain()), settings.AutoSaveMode) &&
         takeInteger(reader, settings.ComPort) && takeInteger(reader, settings.KnobPosition) &&
         takeInteger(reader, window.left) && takeInteger(reader, window.top) &&
         takeInteger(reader, window.width) && takeInteger(reader, window.state);
}

bool SessionConfigFile::WriteSessionConfig(const ProgramSettings& settings,
                                           const CurrentWindow& window) {
  if (!m_enterStateFolder().ok()) return false;
  std::string text;
  for (const std::string& value :
       {quotedText(settings.IniPath), fromLong(settings.AutoSaveMode), fromLong(settings.ComPort),
        fromLong(settings.KnobPosition), windowNumber(window.left), windowNumber(window.top),
        windowNumber(window.width), windowNumber(window.state)}) {
    text += value + "\r\n";
  }
  return m_store.replace(kConfigName, text).ok();
}

}  // namespace qv3
