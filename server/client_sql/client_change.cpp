#include "server/client_sql/client_change.h"

#include "server/client_sql/client_sql_parser.h"

namespace kalvor::server {

namespace {

// Reads the grammar of parseClientChange.
class ClientChangeParser : public ClientSqlParser {
 public:
  using ClientSqlParser::ClientSqlParser;

  bool parse(ClientChange& change) { return statement(change) && isAtEnd(); }

 private:
  bool statement(ClientChange& change)
  {
    if (word("INSERT")) {
      change.kind = ClientChange::Kind::Insert;
      return word("INTO") && table(change) && columnList(change) && word("VALUES") && valueRows(change);
    }
    if (word("UPDATE")) {
      change.kind = ClientChange::Kind::Update;
      return table(change) && word("SET") && settings(change) && where(change.where);
    }
    change.kind = ClientChange::Kind::Delete;
    return word("DELETE") && word("FROM") && table(change) && where(change.where);
  }

  bool table(ClientChange& change)
  {
    const bool owned = word("dbo");
    return (!owned || symbol(".")) && name(change.table);
  }

  bool columnList(ClientChange& change)
  {
    if (!symbol("(")) {
      return false;
    }
    do {
      QString item;
      if (!name(item)) {
        return false;
      }
      change.columns.append(item);
    } while (symbol(","));
    return symbol(")");
  }

  bool valueRows(ClientChange& change)
  {
    do {
      VariantArray row;
      if (!symbol("(")) {
        return false;
      }
      do {
        Variant item;
        if (!value(item)) {
          return false;
        }
        row.append(item);
      } while (symbol(","));
      if (!symbol(")") || row.size() != change.columns.size()) {
        return false;
      }
      change.rows.append(Variant(row).toList());
    } while (symbol(","));
    return true;
  }

  bool settings(ClientChange& change)
  {
    VariantArray row;
    do {
      SelectColumn target;
      Variant item;
      if (!column(target) || !symbol("=") || !value(item) ||
          (!target.table.isEmpty() && target.table.compare(change.table, Qt::CaseInsensitive) != 0)) {
        return false;
      }
      change.columns.append(target.column);
      row.append(item);
    } while (symbol(","));
    change.rows.append(Variant(row).toList());
    return true;
  }
};

// Whether a statement begins with the token. An IF keeps all that follows it.
bool beginsStatement(const SqlToken& token)
{
  static constexpr const char* firstWords[] = {"INSERT", "UPDATE", "DELETE", "SELECT", "EXEC", "IF"};
  return std::any_of(std::begin(firstWords), std::end(firstWords), [&](const char* word) { return token.isWord(word); });
}

}  // namespace

std::optional<ClientChange> parseClientChange(const QString& sql)
{
  auto tokens = tokenizeSql(sql);
  ClientChange change;
  return tokens && ClientChangeParser(std::move(*tokens)).parse(change) ? std::optional(change) : std::nullopt;
}

std::optional<QStringList> statementsOf(const QString& batch)
{
  const auto tokens = tokenizeSql(batch, SqlText::Batch);
  if (!tokens) {
    return {};
  }
  QStringList statements;
  qsizetype begin = 0;
  const auto endAt = [&](qsizetype end) {
    if (end > begin) {
      const qsizetype from = tokens->at(begin).begin;
      statements.append(batch.mid(from, tokens->at(end - 1).end - from));
    }
  };
  for (qsizetype at = 0; at < tokens->size(); ++at) {
    if (tokens->at(at).isSymbol(";")) {
      endAt(at);
      begin = at + 1;
    } else if (at > begin && !tokens->at(begin).isWord("IF") && beginsStatement(tokens->at(at))) {
      endAt(at);
      begin = at;
    }
  }
  endAt(tokens->size());
  return statements;
}

}  // namespace kalvor::server
