#include "server/client_sql/client_sql_parser.h"

namespace kalvor::server {

namespace {

// Reads the grammar of parseClientSelect.
class ClientSelectParser : public ClientSqlParser {
 public:
  using ClientSqlParser::ClientSqlParser;

  bool parse(ClientSelect& select)
  {
    return word("SELECT") && columns(select) && word("FROM") && name(select.table) && joins(select) &&
           where(select.where) && isAtEnd();
  }

 private:
  bool columns(ClientSelect& select)
  {
    do {
      SelectColumn item;
      if (!column(item) || (word("AS") && !name(item.name))) {
        return false;
      }
      select.columns.append(item);
    } while (select.columns.size() < maxSelectColumns && symbol(","));
    return true;
  }

  bool joins(ClientSelect& select)
  {
    while (select.joins.size() < maxSelectJoins && (isWord("INNER") || isWord("LEFT") || isWord("JOIN"))) {
      SelectJoin join;
      join.left = word("LEFT");
      if (join.left) {
        word("OUTER");
      } else {
        word("INNER");
      }
      if (!word("JOIN") || !name(join.table) || !word("ON")) {
        return false;
      }
      do {
        ColumnPair pair;
        if (!column(pair.left) || !symbol("=") || !column(pair.right)) {
          return false;
        }
        join.equal.append(pair);
      } while (join.equal.size() < maxJoinEqualities && word("AND"));
      select.joins.append(join);
    }
    return true;
  }
};

}  // namespace

std::optional<ClientSelect> parseClientSelect(const QString& sql)
{
  auto tokens = tokenizeSql(sql);
  ClientSelect select;
  return tokens && ClientSelectParser(std::move(*tokens)).parse(select) ? std::optional(select) : std::nullopt;
}

std::optional<ClientSelect> tableSelect(const QString& table, const QString& columns)
{
  return parseClientSelect(QStringLiteral("SELECT %1 FROM %2").arg(columns, quotedName(table.trimmed())));
}

}  // namespace kalvor::server
