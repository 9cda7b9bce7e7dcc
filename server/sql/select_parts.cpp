#include "server/sql/select_parts.h"

namespace kalvor::server {

namespace {

constexpr const char* joinWords[] = {"INNER", "LEFT", "RIGHT", "FULL", "OUTER", "CROSS", "JOIN", "ON", "USING", "WHERE"};

bool isJoinWord(const SqlToken& token)
{
  return std::any_of(std::begin(joinWords), std::end(joinWords), [&](const char* word) { return token.isWord(word); });
}

class SelectReader {
 public:
  explicit SelectReader(QList<SqlToken> tokens) { parts_.tokens = std::move(tokens); }
  std::optional<SelectParts> read(QString* reason);

 private:
  qsizetype count() const { return parts_.tokens.size(); }
  const SqlToken& at(qsizetype index) const { return parts_.tokens.at(index); }
  // The first place from `begin` outside brackets where a word stands; the end when there is none.
  qsizetype findWord(qsizetype begin, const char* word) const;
  bool readItems(qsizetype begin, qsizetype end);
  bool readItem(qsizetype begin, qsizetype end);
  void readTables();
  bool fail(const QString& why)
  {
    reason_ = why;
    return false;
  }

  SelectParts parts_;
  QString reason_;
};

qsizetype SelectReader::findWord(qsizetype begin, const char* word) const
{
  int depth = 0;
  for (qsizetype i = begin; i < count(); ++i) {
    depth += at(i).isSymbol("(") ? 1 : at(i).isSymbol(")") ? -1 : 0;
    if (depth == 0 && at(i).isWord(word)) {
      return i;
    }
  }
  return count();
}

bool SelectReader::readItem(qsizetype begin, qsizetype end)
{
  if (begin >= end) {
    return fail(QStringLiteral("an empty item"));
  }
  SelectItem item{begin, end, {}, {}, {}, {}};
  if (end - begin >= 3 && at(end - 2).isWord("AS") && at(end - 1).isName()) {
    item.name = at(end - 1).text.section(u':', 0, 0);
    item.type = at(end - 1).text.section(u':', 1);
    item.end = end - 2;
  }
  const qsizetype size = item.end - begin;
  if (size == 3 && at(begin).isName() && at(begin + 1).isSymbol(".")) {
    item.table = at(begin).text;
    if (at(begin + 2).isSymbol("*")) {
      item.allColumns = true;
    } else {
      item.column = at(begin + 2).text;
    }
  } else if (size == 1 && at(begin).isName()) {
    item.column = at(begin).text;
  }
  if (item.name.isEmpty()) {
    item.name = item.column;
  }
  if (item.name.isEmpty() && !item.allColumns) {
    return fail(QStringLiteral("an expression without AS at %1").arg(at(begin).begin));
  }
  parts_.items.append(item);
  return true;
}

bool SelectReader::readItems(qsizetype begin, qsizetype end)
{
  int depth = 0;
  qsizetype itemBegin = begin;
  for (qsizetype i = begin; i < end; ++i) {
    depth += at(i).isSymbol("(") ? 1 : at(i).isSymbol(")") ? -1 : 0;
    if (depth == 0 && at(i).isSymbol(",")) {
      if (!readItem(itemBegin, i)) {
        return false;
      }
      itemBegin = i + 1;
    }
  }
  return readItem(itemBegin, end);
}

void SelectReader::readTables()
{
  int depth = 0;
  bool expected = true;
  for (qsizetype i = parts_.fromBegin; i < parts_.fromEnd; ++i) {
    depth += at(i).isSymbol("(") ? 1 : at(i).isSymbol(")") ? -1 : 0;
    if (depth > 0) {
      expected = false;
    } else if (at(i).isWord("JOIN") || at(i).isSymbol(",")) {
      expected = true;
    } else if (expected && at(i).isName()) {
      SelectTable table{at(i).text, at(i).text};
      qsizetype next = i + 1;
      next += next < parts_.fromEnd && at(next).isWord("AS");
      if (next < parts_.fromEnd && at(next).isName() && !isJoinWord(at(next))) {
        table.alias = at(next).text;
        i = next;
      }
      parts_.tables.append(table);
      expected = false;
    }
  }
}

std::optional<SelectParts> SelectReader::read(QString* reason)
{
  const auto failed = [&](const QString& why) {
    if (reason) {
      *reason = reason_.isEmpty() ? why : reason_;
    }
    return std::nullopt;
  };
  if (count() == 0 || !at(0).isWord("SELECT")) {
    return failed(QStringLiteral("no SELECT"));
  }
  const qsizetype from = findWord(1, "FROM");
  const bool distinct = count() > 1 && at(1).isWord("DISTINCT");
  if (from == count() || !readItems(distinct ? 2 : 1, from)) {
    return failed(QStringLiteral("no FROM"));
  }
  if (findWord(1, "ORDER") != count() || findWord(1, "LIMIT") != count()) {
    return failed(QStringLiteral("an order or a limit"));
  }
  const qsizetype where = findWord(from, "WHERE");
  const qsizetype group = qMin(findWord(from, "GROUP"), findWord(from, "UNION"));
  parts_.distinct = distinct;
  parts_.unioned = findWord(from, "UNION") != count();
  parts_.restBegin = group;
  parts_.fromBegin = from + 1;
  parts_.fromEnd = qMin(where, group);
  parts_.whereBegin = qMin(where + 1, count());
  parts_.whereEnd = where < group ? group : parts_.whereBegin;
  readTables();
  return parts_;
}

}  // namespace

std::optional<SelectParts> parseSelect(const QString& sql, QString* reason)
{
  auto tokens = tokenizeSql(sql);
  if (!tokens) {
    if (reason) {
      *reason = QStringLiteral("not readable as SQL");
    }
    return {};
  }
  return SelectReader(std::move(*tokens)).read(reason);
}

}  // namespace kalvor::server
