#include "common/table_order.h"

#include <QHash>
#include <algorithm>

#include "common/sql_text.h"
#include "data/data_error.h"
#include "platform/ports.h"

namespace kalvor {
namespace {

const QString userTablesStatement = QStringLiteral("Select name from sysobjects where  Type = 'u'");
const QString referenceTableStatement = QStringLiteral("select PK_Table from S_ReferenceTable where FK_Table = ");
const QString foreignKeysStatement =
    QStringLiteral("SELECT DISTINCT  sor.name Pk_table, sof.name FK_table FROM sysforeignkeys sysfrk "
                   "INNER JOIN sysobjects soc ON soc.id = sysfrk.constid "
                   "INNER JOIN sysobjects sof ON sof.id = sysfrk.fkeyid  "
                   "INNER JOIN sysobjects sor ON sor.id = sysfrk.rkeyid  where sof.name = ");

QStringList splitDependencies(QString text)
{
  return text.replace(u' ', u';').split(u';', Qt::SkipEmptyParts);
}

class TableOrdering {
 public:
  TableOrdering(const CatalogueQuery& catalogue, bool useReferenceTable)
      : catalogue_(catalogue), useReferenceTable_(useReferenceTable)
  {
  }

  // One walk over the pending tables, last to first; false: none could be placed.
  bool place(QStringList& pending, QStringList& result)
  {
    const qsizetype before = pending.size();
    for (qsizetype i = pending.size() - 1; i >= 0; --i)
      if (placeTable(pending.at(i), result))
        pending.removeAt(i);
    return pending.size() < before;
  }

 private:
  bool placeTable(const QString& table, QStringList& result)
  {
    const QString& dependencies = dependenciesOf(table);
    if (dependencies.isEmpty() || dependencies == table) {
      result.prepend(table);
      return true;
    }
    const QStringList names = splitDependencies(dependencies);
    const bool placeable = std::all_of(names.begin(), names.end(), [&](const QString& name) {
      return name == table || result.contains(name);
    });
    if (placeable)
      result.append(table);
    return placeable;
  }

  const QString& dependenciesOf(const QString& table)
  {
    auto known = dependencies_.find(table);
    if (known == dependencies_.end())
      known = dependencies_.insert(table, GetDependenceTableList(catalogue_, table, useReferenceTable_));
    return *known;
  }

  const CatalogueQuery& catalogue_;
  bool useReferenceTable_;
  QHash<QString, QString> dependencies_;
};

}  // namespace

QString GetDependenceTableList(const CatalogueQuery& catalogue, const QString& table, bool useReferenceTable)
{
  const QString& statement = useReferenceTable ? referenceTableStatement : foreignKeysStatement;
  return catalogue(statement + sqlQuoted(table), QStringLiteral("PK_Table")).join(u';');
}

void OrderUserTables(const CatalogueQuery& catalogue, QStringList& result, bool useReferenceTable)
{
  result.clear();
  const WaitCursorScope waiting;
  QStringList pending = catalogue(userTablesStatement, QStringLiteral("name"));
  QStringList placed;
  TableOrdering ordering(catalogue, useReferenceTable);
  while (!pending.isEmpty())
    if (!ordering.place(pending, placed))
      throw DataError(QStringLiteral("Таблиците не могат да бъдат подредени, защото се отнасят една към друга: %1")
                          .arg(pending.join(QStringLiteral(", "))));
  result = placed;
}

}  // namespace kalvor
