#include "server/updates/numbering.h"

#include "rpc/rpc_error.h"
#include "server/sql/sql_tokens.h"

namespace kalvor::server {

namespace {

constexpr int usualWidth = 10;
constexpr int absoluteKind = 1;

[[noreturn]] void refuseNumbering(const QString& why)
{
  throw RpcError(RpcError::Refused, QStringLiteral("Грешка при извличане на данни за генериране на номер. %1").arg(why));
}

// The series a request may name: that of absolute numbers for AbsoluteNo, else the record's own.
void checkSeries(const Access& access, const TableInfo& table, const NumberingRequest& request)
{
  const bool absolute = request.field.compare(QLatin1StringView("AbsoluteNo"), Qt::CaseInsensitive) == 0;
  const ColumnInfo* own = table.column(u"Series_Id");
  bool valid = false;
  if (absolute) {
    valid = access.db.value(QStringLiteral("SELECT Kind FROM N_Series WHERE Id = ? AND Comp_Id = ?"),
                            {request.seriesId, access.session.companyId}).toInt() == absoluteKind;
  } else if (own) {
    const QString sql = QStringLiteral("SELECT %1 FROM %2 WHERE \"Id\" = ?").arg(quotedName(own->name), quotedName(table.name));
    valid = access.db.value(sql, {request.recordId}).toString() == request.seriesId;
  }
  if (!valid) {
    refuseNumbering(QStringLiteral("Серията не е тази на документа."));
  }
}

}  // namespace

QList<NumberingRequest> NumberingRequest::listFrom(const Variant& value)
{
  QList<NumberingRequest> requests;
  for (const Variant& item : value.toList()) {
    const VariantArray parts = item.toList();
    if (parts.size() < 4) {
      throw RpcError(RpcError::BadArguments, QStringLiteral("Заявката за номер не може да бъде прочетена."));
    }
    requests.append({variantText(parts[0]), variantText(parts[1]), variantText(parts[2]), variantText(parts[3])});
  }
  return requests;
}

QString nextNumber(const Access& access, const QString& seriesId)
{
  const VariantArray key{seriesId, access.session.companyId};
  const qint64 counted = access.db.execute(
      QStringLiteral("UPDATE N_Series SET LastNo = LastNo + 1 WHERE Id = ? AND Comp_Id = ? AND "
                     "(MaxNo IS NULL OR MaxNo = 0 OR LastNo < MaxNo)"), key);
  auto row = access.db.prepare(QStringLiteral("SELECT LastNo, MaxNo, Prefix, Name FROM N_Series WHERE Id = ? AND Comp_Id = ?"));
  row->bind(0, key[0]);
  row->bind(1, key[1]);
  if (!row->step()) {
    throw RpcError(RpcError::Invalid, QStringLiteral("Няма такава серия от номера."));
  }
  if (counted != 1) {
    throw RpcError(RpcError::Invalid, QStringLiteral("Номерата на серия „%1“ са изчерпани.").arg(row->text(3)));
  }
  const QString prefix = row->text(2);
  const qint64 highest = row->integer(1);
  const int width = highest > 0 ? int(QString::number(highest).size()) : usualWidth - int(prefix.size());
  return prefix + QStringLiteral("%1").arg(row->integer(0), qMax(1, width), 10, QLatin1Char('0'));
}

void giveNumber(const Access& access, const TableInfo& table, const NumberingRequest& request)
{
  const ColumnInfo* column = table.column(request.field);
  const ColumnInfo* key = table.column(u"Id");
  if (!column || !key || !isTextType(column->type)) {
    refuseNumbering(QStringLiteral("Непознато поле „%1“.").arg(request.field.left(64)));
  }
  checkSeries(access, table, request);
  const QString present = access.db.value(
      QStringLiteral("SELECT %1 FROM %2 WHERE \"Id\" = ?").arg(quotedName(column->name), quotedName(table.name)),
      {request.recordId}).toString();
  if (!present.trimmed().isEmpty()) {
    return;
  }
  access.db.execute(QStringLiteral("UPDATE %1 SET %2 = ? WHERE \"Id\" = ?").arg(quotedName(table.name), quotedName(column->name)),
                    {nextNumber(access, request.seriesId), request.recordId});
}

}  // namespace kalvor::server
