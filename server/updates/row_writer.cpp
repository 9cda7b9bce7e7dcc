#include "server/updates/row_writer.h"

#include <QDateTime>
#include <QUuid>

#include "rpc/rpc_error.h"
#include "server/rights/row_security.h"
#include "server/updates/column_values.h"
#include "server/updates/update_errors.h"

namespace kalvor::server {

RowWriter::RowWriter(const Access& access, const UpdateTarget& target, QSet<QString>& insertedMasters)
    : access_(access),
      target_(target),
      insertedMasters_(insertedMasters),
      security_(rowSecurity(access, *target.query, target.request.parameters, RowUse::Writing))
{
}

void RowWriter::write()
{
  const auto& status = target_.delta->status;
  for (size_t row = 0; row < status.size(); ++row) {
    const Image image = imageOf(qsizetype(row));
    switch (status[row]) {
      case UpdateStatus::Inserted: insertRow(image); break;
      case UpdateStatus::Deleted: deleteRow(image); break;
      case UpdateStatus::Unmodified:
        if (row + 1 >= status.size() || status[row + 1] != UpdateStatus::Modified) {
          throw RpcError(RpcError::BadArguments, QStringLiteral("Промените не могат да бъдат прочетени."));
        }
        updateRow(image, imageOf(qsizetype(++row)));
        break;
      case UpdateStatus::Modified:
        throw RpcError(RpcError::BadArguments, QStringLiteral("Промените не могат да бъдат прочетени."));
    }
  }
}

RowWriter::Image RowWriter::imageOf(qsizetype row) const
{
  const RecordSet& records = target_.delta->records;
  const auto key = columnValue(*target_.key, records.value(row, target_.keyField));
  Image image{key.value_or(Variant()), {}};
  for (const UpdateColumn& column : target_.columns) {
    const auto value = columnValue(*column.column, records.value(row, column.field));
    if (!value) {
      throw invalidValue(column.caption);
    }
    if (column.column->size > 0 && value->toString().size() > column.column->size &&
        isTextType(column.column->type)) {
      throw tooLong(column.caption, column.column->size);
    }
    image.values.append(*value);
  }
  return image;
}

Variant RowWriter::valueOf(const Image& image, QStringView column) const
{
  for (qsizetype i = 0; i < target_.columns.size(); ++i) {
    if (column.compare(target_.columns.at(i).column->name, Qt::CaseInsensitive) == 0) {
      return image.values.at(i);
    }
  }
  return {};
}

// A line of a document is entered and edited with the right to edit the document, or to add it while it is new.
void RowWriter::requireDetailRight(const Image& image, FormRight right) const
{
  const bool ofNewMaster = insertedMasters_.contains(valueOf(image, u"Master_Id").toString());
  const bool allowed = right == FormRight::Delete ? target_.rights.has(FormRight::Delete)
                                                  : target_.rights.has(FormRight::Edit) ||
                                                        (ofNewMaster && target_.rights.has(FormRight::Insert));
  if (!allowed) {
    refuseRight(target_.request.formId, right == FormRight::Delete ? right : FormRight::Edit);
  }
}

void RowWriter::requireRowRight(const Image& image, FormRight right) const
{
  if (target_.request.dsIndex > 0) {
    requireDetailRight(image, right);
  } else if (!target_.rights.has(right)) {
    refuseRight(target_.request.formId, right);
  }
}

Variant RowWriter::newKey(const Variant& given) const
{
  if (!given.toString().isEmpty()) {
    return given;
  }
  if (isIntegerType(target_.key->type)) {
    const QString sql = QStringLiteral("SELECT MAX(%1) FROM %2").arg(quotedName(target_.key->name), quotedName(target_.table->name));
    return access_.db.value(sql).toLongLong() + 1;
  }
  return QUuid::createUuid().toString(QUuid::Id128).toUpper();
}

Fragment RowWriter::stampValues(const QString& separator) const
{
  const StampColumns& stamps = target_.stamps;
  const std::pair<const ColumnInfo*, Variant> values[] = {
      {stamps.user, access_.session.userId},
      {stamps.moment, QDateTime::currentDateTime()},
      {stamps.group, access_.session.groupId.isEmpty() ? Variant() : Variant(access_.session.groupId)},
  };
  Fragment list;
  for (const auto& [column, value] : values) {
    if (column) {
      list += Fragment{separator.arg(quotedName(column->name)), {value}};
    }
  }
  return list;
}

void RowWriter::execute(const Fragment& sql)
{
  try {
    if (access_.db.execute(sql.sql, sql.values) != 1) {
      throw RpcError(RpcError::Conflict, QStringLiteral("Записът е изтрит или променен от друг потребител. Обновете данните."));
    }
  } catch (const StoreError& error) {
    throw constraintError(error, target_);
  }
}

void RowWriter::insertRow(const Image& image)
{
  requireRowRight(image, FormRight::Insert);
  checkSeriesNumber({}, image);
  const Variant key = newKey(image.key);
  QStringList names{quotedName(target_.key->name)};
  VariantArray values{key};
  const auto add = [&](const ColumnInfo* column, const Variant& value) {
    if (column && column != target_.key && !isNull(value)) {
      names.append(quotedName(column->name));
      values.append(value);
    }
  };
  for (qsizetype i = 0; i < target_.columns.size(); ++i) {
    add(target_.columns.at(i).column, image.values.at(i));
  }
  add(target_.stamps.company, access_.session.companyId);
  add(target_.stamps.user, access_.session.userId);
  add(target_.stamps.moment, QDateTime::currentDateTime());
  add(target_.stamps.group, access_.session.groupId);
  const QString marks = QStringList(values.size(), QStringLiteral("?")).join(u',');
  execute({QStringLiteral("INSERT INTO %1 (%2) VALUES (%3)").arg(quotedName(target_.table->name), names.join(u','), marks),
           values});
  written_.insert(key.toString());
  if (target_.request.dsIndex <= 0) {
    insertedMasters_.insert(key.toString());
  }
}

void RowWriter::updateRow(const Image& before, const Image& after)
{
  requireRowRight(after, FormRight::Edit);
  if (before.key.toString() != after.key.toString()) {
    throw RpcError(RpcError::Refused, QStringLiteral("Идентификаторът на запис не може да бъде променян."));
  }
  requireUnchanged(before);
  checkSeriesNumber(before, after);
  Fragment changes;
  for (qsizetype i = 0; i < target_.columns.size(); ++i) {
    const ColumnInfo* column = target_.columns.at(i).column;
    if (!sameColumnValue(*column, before.values.at(i), after.values.at(i)) ||
        isNull(before.values.at(i)) != isNull(after.values.at(i))) {
      changes += Fragment{QStringLiteral(", %1 = ?").arg(quotedName(column->name)), {after.values.at(i)}};
    }
  }
  changes += stampValues(QStringLiteral(", %1 = ?"));
  if (!changes.isEmpty()) {
    changes.sql.remove(0, 2);
    execute(QStringLiteral("UPDATE %1 SET ").arg(quotedName(target_.table->name)) + changes + QStringLiteral(" WHERE ") +
            target_.rowCondition(before.key, access_.session));
  }
  written_.insert(before.key.toString());
}

void RowWriter::deleteRow(const Image& before)
{
  requireRowRight(before, FormRight::Delete);
  requireUnchanged(before);
  if (target_.request.dsIndex <= 0) {
    deleteDetails(before.key);
  }
  execute(QStringLiteral("DELETE FROM %1 WHERE ").arg(quotedName(target_.table->name)) +
          target_.rowCondition(before.key, access_.session));
}

// The lines of a document go with it, also when it is deleted in its list, whose edit form knows the lines.
void RowWriter::deleteDetails(const Variant& key)
{
  const int formId = target_.request.formId;
  for (int form : {formId, formId % 2 == 0 ? formId + 1 : formId - 1}) {
    const StoredQuery* master = access_.metadata.query(form, 0);
    if (!master || master->base != target_.table) {
      continue;
    }
    for (const StoredQuery* detail : access_.metadata.queriesOfForm(form)) {
      const ColumnInfo* link = detail->base ? detail->base->column(u"Master_Id") : nullptr;
      if (detail->dsIndex > 0 && link && !detail->base->view && detail->base != target_.table) {
        access_.db.execute(QStringLiteral("DELETE FROM %1 WHERE %2 = ?").arg(quotedName(detail->base->name), quotedName(link->name)),
                           {key});
      }
    }
  }
}

void RowWriter::requireUnchanged(const Image& before) const
{
  Fragment list{QStringLiteral("1"), {}};
  for (const UpdateColumn& column : target_.columns) {
    list += QStringLiteral(", ") + quotedName(target_.query->baseAlias) + u'.' + quotedName(column.column->name);
  }
  const Fragment key = quotedName(target_.query->baseAlias) + u'.' + quotedName(target_.key->name) +
                       Fragment{QStringLiteral(" = ?"), {before.key}};
  const Fragment sql = target_.query->selectFrom(list, {key, security_}, access_.session.companyId, target_.request.parameters);
  auto row = access_.db.prepare(sql.sql);
  for (int i = 0; i < sql.values.size(); ++i) {
    row->bind(i, sql.values.at(i));
  }
  if (!row->step()) {
    refuseMissing(before);
  }
  QStringList changed;
  for (int i = 0; i < target_.columns.size(); ++i) {
    const UpdateColumn& column = target_.columns.at(i);
    if (!sameColumnValue(*column.column, before.values.at(i), row->value(i + 1))) {
      changed.append(column.caption);
    }
  }
  if (!changed.isEmpty()) {
    refuseConflict(before.key, changed);
  }
}

void RowWriter::refuseMissing(const Image& before) const
{
  const Fragment sql = QStringLiteral("SELECT 1 FROM %1 WHERE ").arg(quotedName(target_.table->name)) +
                       target_.rowCondition(before.key, access_.session);
  if (isNull(access_.db.value(sql.sql, sql.values))) {
    throw RpcError(RpcError::Conflict, QStringLiteral("Записът е изтрит от друг потребител. Обновете данните."));
  }
  throw outsideSecurity(target_.request.formId);
}

void RowWriter::refuseConflict(const Variant& key, const QStringList& captions) const
{
  QString user;
  QDateTime moment;
  const Fragment where = QStringLiteral(" FROM %1 WHERE ").arg(quotedName(target_.table->name)) +
                         target_.rowCondition(key, access_.session);
  const auto stamp = [&](const ColumnInfo* column) {
    return column ? access_.db.value(QStringLiteral("SELECT ") + quotedName(column->name) + where.sql, where.values) : Variant();
  };
  throw conflict(stamp(target_.stamps.user).toString(), stamp(target_.stamps.moment).toDateTime(), captions);
}

void RowWriter::checkWritten() const
{
  if (security_.isEmpty()) {
    return;
  }
  const Fragment list{QStringLiteral("1"), {}};
  for (const QString& key : written_) {
    const Fragment match = quotedName(target_.query->baseAlias) + u'.' + quotedName(target_.key->name) +
                           Fragment{QStringLiteral(" = ?"), {key}};
    const Fragment sql = target_.query->selectFrom(list, {match, security_}, access_.session.companyId, target_.request.parameters);
    if (isNull(access_.db.value(sql.sql, sql.values))) {
      throw outsideSecurity(target_.request.formId);
    }
  }
}

void RowWriter::checkSeriesNumber(const Image& before, const Image& after) const
{
  for (qsizetype i = 0; i < target_.columns.size(); ++i) {
    const UpdateColumn& column = target_.columns.at(i);
    const QString number = after.values.at(i).toString().trimmed();
    if (!column.seriesNumber || number.isEmpty() || number == before.values.value(i).toString().trimmed()) {
      continue;
    }
    const Variant manual = access_.db.value(QStringLiteral("SELECT ManualNo FROM N_Series WHERE Id = ? AND Comp_Id = ?"),
                                            {valueOf(after, u"Series_Id"), access_.session.companyId});
    if (!isNull(manual) && manual.toInt() == 0) {
      throw RpcError(RpcError::Invalid, QStringLiteral("Серията позволява само автоматична номерация"));
    }
  }
}

}  // namespace kalvor::server
