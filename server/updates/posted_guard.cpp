#include "server/updates/posted_guard.h"

#include <algorithm>

#include "rpc/rpc_error.h"
#include "server/updates/column_values.h"

namespace kalvor::server {

namespace {

// Where posted rows are and what says so; lines go by their document. No condition: only posting writes there.
struct PostedRows {
  const char* table;
  const char* master;
  const char* condition;
};
constexpr PostedRows postedRows[] = {
    {"D_GlobalSaleHeader", nullptr, "GlobDocIsPosted = 1"},
    {"D_GlobalSaleLine", "D_GlobalSaleHeader", "GlobDocIsPosted = 1"},
    {"D_SaleInvoiceHeader", nullptr, "DocStatus = 1"},
    {"D_SaleInvoiceLine", "D_SaleInvoiceHeader", "DocStatus = 1"},
    {"D_SaleCrMemoHeader", nullptr, nullptr},
    {"D_SaleCrMemoLine", "D_SaleCrMemoHeader", nullptr},
    {"D_ShipmentHeader", nullptr, nullptr},
    {"D_ShipmentLine", "D_ShipmentHeader", nullptr},
    {"G_Entry", nullptr, nullptr},
    {"G_VATEntry", nullptr, nullptr},
    {"G_ItemEntry", nullptr, nullptr},
    {"G_ItemValueEntry", nullptr, nullptr},
    {"G_ContragentEntry", nullptr, nullptr},
    {"G_ContragentEntryDetail", nullptr, nullptr},
    {"G_LBankAccountEntry", nullptr, nullptr},
};

const PostedRows* postedRowsOf(const TableInfo& table)
{
  const auto* found = std::find_if(std::begin(postedRows), std::end(postedRows), [&](const PostedRows& rows) {
    return table.name.compare(QLatin1StringView(rows.table), Qt::CaseInsensitive) == 0;
  });
  return found == std::end(postedRows) ? nullptr : found;
}

QString shownPosted(const QString& number)
{
  return number.isEmpty() ? QStringLiteral("Осчетоводени данни не могат да бъдат променяни.")
                          : QStringLiteral("Документ %1 е осчетоводен и не може да бъде променян.").arg(number);
}

class PostedGuard {
 public:
  PostedGuard(const Access& access, const UpdateTarget& target, const PostedRows& rows, const QSet<QString>& newDocuments)
      : access_(access), target_(target), rows_(rows), checked_(newDocuments)
  {
    for (const UpdateColumn& column : target.columns) {
      if (column.column->name.compare(u"Master_Id", Qt::CaseInsensitive) == 0) {
        masterField_ = column.field;
      }
    }
  }

  QString check()
  {
    const auto& status = target_.delta->status;
    for (size_t row = 0; row < status.size() && found_.isEmpty(); ++row) {
      const bool pair = status[row] == UpdateStatus::Unmodified && row + 1 < status.size();
      if (!(pair && changesNothing(row))) {
        checkRow(row, status[row] == UpdateStatus::Inserted);
        if (pair && rows_.master) {
          checkMaster(row + 1);
        }
      }
      row += pair ? 1 : 0;
    }
    return found_;
  }

 private:
  bool changesNothing(size_t row) const
  {
    const RecordSet& records = target_.delta->records;
    return std::all_of(target_.columns.begin(), target_.columns.end(), [&](const UpdateColumn& column) {
      return column.column->name.compare(u"CopiesPrinted", Qt::CaseInsensitive) == 0 ||
             sameColumnValue(*column.column, records.value(qsizetype(row), column.field), records.value(qsizetype(row) + 1, column.field));
    });
  }

  void checkRow(size_t row, bool inserted)
  {
    if (!rows_.condition) {
      found_ = shownPosted({});
      return;
    }
    if (rows_.master) {
      checkMaster(row);
    }
    if (inserted) {
      return;
    }
    const QString key = target_.delta->records.value(qsizetype(row), target_.keyField).toString();
    const QString sql =
        rows_.master ? QStringLiteral("SELECT m.DocumentNo FROM %1 l INNER JOIN %2 m ON m.Id = l.Master_Id WHERE l.Id = ? AND m.%3")
                           .arg(QLatin1StringView(rows_.table), QLatin1StringView(rows_.master), QLatin1StringView(rows_.condition))
                     : QStringLiteral("SELECT DocumentNo FROM %1 WHERE Id = ? AND %2")
                           .arg(QLatin1StringView(rows_.table), QLatin1StringView(rows_.condition));
    look(sql, key);
  }

  // The document that a line says it is of.
  void checkMaster(size_t row)
  {
    const QString master = masterField_ < 0 ? QString() : target_.delta->records.value(qsizetype(row), masterField_).toString();
    if (!master.isEmpty() && !checked_.contains(master)) {
      look(QStringLiteral("SELECT DocumentNo FROM %1 WHERE Id = ? AND %2")
                      .arg(QLatin1StringView(rows_.master), QLatin1StringView(rows_.condition)), master);
      checked_.insert(master);
    }
  }

  void look(const QString& sql, const QString& key)
  {
    auto found = access_.db.prepare(sql);
    found->bind(0, key);
    if (found->step()) {
      found_ = shownPosted(found->text(0));
    }
  }

  const Access& access_;
  const UpdateTarget& target_;
  const PostedRows& rows_;
  int masterField_ = -1;
  QString found_;
  QSet<QString> checked_;  // documents that lines may be changed of
};

}  // namespace

QString postedChange(const Access& access, const UpdateTarget& target, const QSet<QString>& newDocuments)
{
  const PostedRows* rows = postedRowsOf(*target.table);
  return rows ? PostedGuard(access, target, *rows, newDocuments).check() : QString();
}

void refusePostedChange(const QString& text)
{
  if (!text.isEmpty()) {
    throw RpcError(RpcError::Refused, text);
  }
}

}  // namespace kalvor::server
