#include <gtest/gtest.h>

#include <QFile>
#include <QKeySequence>
#include <QRegularExpression>
#include <QSet>

#include "app/commandtable.h"
#include "app/options.h"

namespace qv3::test {
namespace {

TEST(CommandTable, KeysAreToldApartByCodeAndShift) {
  struct Row {
    int code;
    bool shift;
    Key key;
  };
  for (const Row& row :
       {Row{Qt::Key_C, false, Key::C}, Row{Qt::Key_C, true, Key::C},
        Row{Qt::Key_Comma, true, Key::Less}, Row{Qt::Key_Comma, false, Key::Other},
        Row{Qt::Key_Greater, true, Key::Greater}, Row{Qt::Key_Escape, false, Key::Other}}) {
    EXPECT_EQ(keyFor(row.code, row.shift), row.key) << row.code << row.shift;
  }
}

struct CommandLine {
  std::vector<std::string> arguments;
  std::string error;
  std::string ports, home, capture, session{};
};

TEST(Options, AreParsed) {
  const CommandLine rows[] = {
      {{}, "", "", "", ""},
      {{"--port", "1=/a", "--home", "h", "--port=2=/b", "--capture=c"}, "", "1=/a 2=/b ", "h", "c"},
      {{"-platform", "offscreen", "--style=fusion", "--home", "-h"}, "", "", "-h", ""},
      {{"--prt", "1=/a"}, "unknown option --prt", "", "", ""},
      {{"-h"}, "unknown option -h", "", "", ""},
      {{"--versions"}, "unknown option --versions", "", "", ""},
      {{"a.qvd", "--home", "h"}, "", "", "h", "", "a.qvd"},
      {{"/b/A.QVD"}, "", "", "", "", "/b/A.QVD"},
      {{"file.ini"}, "\"file.ini\" is not a session, which ends in .qvd", "", "", ""},
      {{".qvd"}, "\".qvd\" is not a session, which ends in .qvd", "", "", ""},
      {{""}, "\"\" is not a session, which ends in .qvd", "", "", ""},
      {{"a.qvd", "b.qvd"},
       "only one session can be opened, not \"a.qvd\" and \"b.qvd\"",
       "",
       "",
       "",
       "a.qvd"},
      {{"--home"}, "--home needs a value", "", "", ""},
      {{"--home", "--port"}, "--home needs a value", "", "", ""},
      {{"--capture="}, "--capture needs a value", "", "", ""}};
  for (const CommandLine& row : rows) {
    SCOPED_TRACE(testing::PrintToString(row.arguments));
    const auto [options, error] = parseOptions(row.arguments);
    std::string ports;
    for (const std::string& port : options.ports) ports += port + ' ';
    EXPECT_EQ(error, row.error);
    EXPECT_EQ(ports, row.ports);
    EXPECT_EQ(options.home, row.home);
    EXPECT_EQ(options.capture, row.capture);
    EXPECT_EQ(options.session, row.session);
  }
}

// ---- What the user guide says of it ----

const QString kArrow = QStringLiteral(" > ");

QString toQString(std::string_view text) {
  return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

QString caption(const MenuRow& row) {
  return toQString(row.caption).remove(u'&');
}

/// As the guide writes it: "Settings > Needle Width > off".
QString path(const MenuRow& row) {
  const MenuRow* menu = findMenuRow(row.menu);
  return menu == nullptr ? caption(row) : path(*menu) + kArrow + caption(row);
}

bool isItem(const MenuRow& row) {
  return !row.caption.empty() && row.act != Act::Separator;
}

/// The captions of a menu, in its order.
QStringList itemsOf(const QString& menu) {
  QStringList items;
  for (const MenuRow& row : menuRows()) {
    if (isItem(row) && path(row) == menu + kArrow + caption(row)) items << caption(row);
  }
  return items;
}

QStringList captured(const QString& text, const char* pattern) {
  QStringList found;
  auto matches = QRegularExpression(QLatin1String(pattern)).globalMatch(text);
  while (matches.hasNext()) found << matches.next().captured(1);
  return found;
}

constexpr char kBold[] = R"(\*\*([^*]+)\*\*)";
constexpr char kKey[] = "<kbd>([^<]+)</kbd>";

class UserGuide : public testing::Test {
 protected:
  void SetUp() override {
    QFile file(QStringLiteral(USER_GUIDE));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    m_text = QString::fromUtf8(file.readAll());
  }

  /// Every menu item that the guide names: alone, or as a choice in the row of its menu.
  QStringList namedItems() const {
    QStringList named;
    for (const QString& line : m_text.split(u'\n')) {
      for (const QString& bold : captured(line, kBold)) {
        if (bold.contains(kArrow)) named << bold;
      }
      const QStringList cells = line.split(u'|');
      if (cells.size() < 4 || !cells[1].startsWith(QLatin1String(" **"))) continue;
      const QString menu = captured(cells[1], kBold).value(0);
      for (const QString& choice : choices(menu, cells[2])) named << menu + kArrow + choice;
    }
    return named;
  }

  QString m_text;

 private:
  /// "**1** to **4**" stands for all between them too.
  static QStringList choices(const QString& menu, const QString& cell) {
    const QStringList items = itemsOf(menu);
    QStringList all = captured(cell, kBold);
    auto ranges = QRegularExpression(QStringLiteral(R"(\*\*([^*]+)\*\* to \*\*([^*]+)\*\*)"))
                      .globalMatch(cell);
    while (ranges.hasNext()) {
      const auto range = ranges.next();
      const auto first = items.indexOf(range.captured(1));
      const auto last = items.indexOf(range.captured(2));
      if (first >= 0) all << items.mid(first, last - first);
    }
    return all;
  }
};

TEST_F(UserGuide, NamesTheMenuItemsThatThereAre) {
  QSet<QString> paths;
  const QStringList named = namedItems();
  for (const MenuRow& row : menuRows()) {
    paths << path(row);
    if (!isItem(row) || row.act == Act::Menu) continue;
    EXPECT_TRUE(named.contains(path(row))) << path(row).toStdString();
  }
  for (const QString& item : named) EXPECT_TRUE(paths.contains(item)) << item.toStdString();
}

TEST_F(UserGuide, ItsKeysAreTheKeys) {
  // Those of the controls and of the window, beside the instrument's.
  QSet<QString> keys{"Tab", "Enter", "F4",      "F10",       "Left", "Right", "Home",
                     "End", "Menu",  "Page Up", "Page Down", "Alt",  "Escape"};
  for (const KeyRow& row : keyRows()) {
    if (row.shift) continue;  // the sign above has a row of its own
    const QString name = QKeySequence(row.code).toString(QKeySequence::PortableText);
    keys << (row.code == Qt::Key_Insert ? QStringLiteral("Insert") : name.toHtmlEscaped());
  }
  const auto start = m_text.indexOf(QLatin1String("\n## Keys\n"));
  const auto end = m_text.indexOf(QLatin1String("\n## "), start + 1);
  ASSERT_GT(start, 0);
  const QStringList told = captured(m_text.mid(start, end - start), kKey);
  for (const QString& key : keys) EXPECT_TRUE(told.contains(key)) << key.toStdString();
  for (const QString& key : captured(m_text, kKey)) {
    EXPECT_TRUE(keys.contains(key)) << key.toStdString();
  }
}

}  // namespace
}  // namespace qv3::test
