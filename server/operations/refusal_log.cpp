#include "server/operations/refusal_log.h"

#include <algorithm>

#include "server/client_sql/statement_template.h"
#include "server/log.h"

namespace kalvor::server {

namespace {

constexpr qsizetype longestAsked = 600;
constexpr qsizetype mostRows = 20;
constexpr int none = -1;

// Where an operation's arguments name what is asked for. Those not here carry passwords, records or nothing to name.
struct AskedArguments {
  const char* operation;
  QList<int> texts;    // statements, names, orders
  int filter = none;
};
const AskedArguments askedArguments[] = {
    {"CreateDynamicProvider", {0}},
    {"DeleteDynamicProvider", {0}},
    {"RequestData", {0, 1, 2, 4}, 3},
    {"OpenProvider", {0}},
    {"FetchRecords", {0}},
    {"RequestValue", {0, 1, 2}, 3},
    {"ExecuteSQLScript", {0}},
    {"ExecMultySQL", {0}},
    {"GetFormsDescription", {0, 1}},
    {"GetFieldsDescription", {0, 1}},
    {"GetQueryID", {0, 1}},
    {"CheckItemUnitCost", {0, 1}},
    {"CheckSaleContragentParams", {0}},
    {"CheckOutDocument", {0, 1}},
    {"DisableFlowFields", {0}},
    {"EnableFlowFields", {0}},
};

// field operator ? conjunction brackets: rows as they came, whatever their shape.
QString filterText(const Variant& filter)
{
  QStringList rows;
  const VariantArray given = filter.toList();
  for (const Variant& row : given.mid(0, mostRows)) {
    const VariantArray parts = row.toList();
    QStringList words;
    for (int i : {4, 0, 1, 3}) {
      words.append(withoutValues(variantText(parts.value(i))).left(i == 0 ? 150 : 60));
    }
    rows.append(QStringLiteral("%1 %2 %3 ? %4").arg(words[0], words[1], words[2], words[3]).simplified());
  }
  return rows.join(QStringLiteral(" | ")) + QLatin1StringView(given.size() > mostRows ? " | ..." : "");
}

}  // namespace

void logRefusal(const Session& session, const Operation& operation, const VariantArray& arguments, const RpcError& error)
{
  const int code = error.code();
  if (code != RpcError::Refused && code != RpcError::Forbidden && code != RpcError::BadArguments) {
    return;
  }
  QStringList asked;
  const auto* row = std::find_if(std::begin(askedArguments), std::end(askedArguments), [&](const AskedArguments& candidate) {
    return qstrcmp(candidate.operation, operation.name) == 0;
  });
  if (row != std::end(askedArguments)) {
    for (int index : row->texts) {
      const QString text = variantText(arguments.value(index));
      bool isNumber = false;
      text.toInt(&isNumber);
      asked.append(isNumber ? text : withoutValues(text));
    }
    if (row->filter != none) {
      asked.append(filterText(arguments.value(row->filter)));
    }
  }
  QString text = asked.join(QStringLiteral("; "));
  if (text.size() > longestAsked) {
    text = text.left(longestAsked) + u'\u2026';
  }
  logEvent(LogLevel::Warning, "refused",
           {{"user", session.userId}, {"company", session.companyId}, {"peer", session.peer},
            {"operation", QString::fromLatin1(operation.name)}, {"code", QString::number(code)}, {"asked", text}});
}

}  // namespace kalvor::server
