#include "server/queries/packet_reader.h"

#include "rpc/rpc_error.h"
#include "server/queries/filter_condition.h"
#include "server/queries/order_terms.h"
#include "server/rights/row_security.h"

namespace kalvor::server {

namespace {

Fragment termComparison(const OrderTerm& term, const char* op, const Variant& value)
{
  // A real number of an expression without a declared type is not an amount and must not be bound as one.
  const bool plainReal = term.type == DataType::Unknown && value.typeId() == QMetaType::Double;
  return term.expression + QStringLiteral(" %1 %2").arg(QLatin1StringView(op), plainReal ? QLatin1StringView("CAST(? AS REAL)")
                                                                                         : QLatin1StringView("?")) +
         Fragment{{}, {plainReal ? Variant(QString::number(value.toDouble(), 'g', 17)) : value}};
}

Fragment termEquality(const OrderTerm& term, const Variant& value)
{
  return isNull(value) ? term.expression + QStringLiteral(" IS NULL") : termComparison(term, "=", value);
}

// The ranges of one term behind a value, in order. Null is the smallest value.
QList<Fragment> rangesBehind(const OrderTerm& term, const Variant& value)
{
  if (isNull(value)) {
    return term.descending ? QList<Fragment>{} : QList<Fragment>{term.expression + QStringLiteral(" IS NOT NULL")};
  }
  if (!term.descending) {
    return {termComparison(term, ">", value)};
  }
  return {termComparison(term, "<", value), term.expression + QStringLiteral(" IS NULL")};
}

// Everything behind the row with these values, as ranges that follow one another: equal up to a term, behind in it.
QList<Fragment> rangesBehind(const QList<OrderTerm>& terms, const VariantArray& values)
{
  QList<Fragment> ranges;
  for (qsizetype depth = terms.size() - 1; depth >= 0; --depth) {
    QList<Fragment> equal;
    for (qsizetype i = 0; i < depth; ++i) {
      equal.append(termEquality(terms.at(i), values.at(i)));
    }
    for (const Fragment& behind : rangesBehind(terms.at(depth), values.at(depth))) {
      ranges.append(allOf(equal + QList<Fragment>{behind}));
    }
  }
  return ranges;
}

class PacketReader {
 public:
  PacketReader(const Access& access, const DataRequest& request)
      : access_(access), request_(request), query_(queryOf(access, request)), fields_(query_, request.parameters)
  {
    const QString order = request.order.trimmed().isEmpty() ? query_.defaultOrder : request.order;
    terms_ = orderTerms(order, fields_);
    const Fragment key = query_.keyExpression();
    keyed_ = !key.isEmpty();
    const bool keyOrdered = std::any_of(terms_.begin(), terms_.end(), [&](const OrderTerm& term) {
      return term.expression.sql == key.sql;
    });
    if (keyed_ && !keyOrdered) {
      // The direction of the last term, so that one index serves both ways.
      terms_.append({key, DataType::WideString, !terms_.isEmpty() && terms_.last().descending});
    }
    conditions_ = {filterCondition(request.filter, fields_), rowSecurity(access, query_, request.parameters)};
  }

  DataPacketPtr read(const Variant& continuation, qsizetype count);

 private:
  void goOn(const Variant& continuation);
  Fragment statement(const Fragment& range, qsizetype limit) const;
  // Reads a range; false when the packet is full and a further row is there.
  bool readRange(const Fragment& range, qsizetype count);
  void defineFields(const Statement* rows);

  const Access& access_;
  const DataRequest& request_;
  const StoredQuery& query_;
  QueryFields fields_;
  QList<OrderTerm> terms_;
  bool keyed_ = false;
  QList<Fragment> conditions_;
  QList<Fragment> ranges_{Fragment()};
  VariantArray types_;        // of the fields, once they are known
  std::shared_ptr<DataPacket> packet_;
  VariantArray last_;         // order values of the last row taken
};

Fragment PacketReader::statement(const Fragment& range, qsizetype limit) const
{
  Fragment list = query_.itemList(request_.parameters);
  Fragment order;
  for (qsizetype i = 0; i < terms_.size(); ++i) {
    const OrderTerm& term = terms_.at(i);
    list += QStringLiteral(", ") + term.expression + QStringLiteral(" AS \"srv_order%1\"").arg(i);
    order += QLatin1StringView(i ? ", " : " ORDER BY ") + term.expression + QLatin1StringView(term.descending ? " DESC" : "");
  }
  Fragment sql = query_.selectFrom(list, conditions_ + QList<Fragment>{range}, access_.session.companyId,
                                   request_.parameters) + order;
  return limit < 0 ? sql : sql + Fragment{QStringLiteral(" LIMIT ?"), {qlonglong(limit)}};
}

void PacketReader::defineFields(const Statement* rows)
{
  QList<FieldDef> fields;
  for (qsizetype i = 0; i < query_.items.size(); ++i) {
    FieldDef field = query_.items.at(i).field;
    if (i < types_.size()) {
      field.type = DataType(types_.at(i).toInt());
    } else if (field.type == DataType::Unknown) {
      field.type = rows ? rows->column(int(i)).type : DataType::WideString;
    }
    fields.append(field);
  }
  types_.clear();
  for (const FieldDef& field : fields) {
    types_.append(int(field.type));
  }
  packet_->records = RecordSet(fields);
}

bool PacketReader::readRange(const Fragment& range, qsizetype count)
{
  const qsizetype wanted = count < 0 ? -1 : count - packet_->records.rows;
  const Fragment sql = statement(range, wanted < 0 ? -1 : wanted + 1);
  auto rows = access_.db.prepare(sql.sql, StatementUse::Asked);
  for (int i = 0; i < sql.values.size(); ++i) {
    rows->bind(i, sql.values.at(i));
  }
  bool more = rows->step();
  if (packet_->records.fields.isEmpty()) {
    defineFields(rows.get());
  }
  for (qsizetype taken = 0; more; more = rows->step(), ++taken) {
    if (taken == wanted) {
      return false;
    }
    rows->appendRowTo(packet_->records);
    if (taken + 1 == wanted) {
      last_.clear();
      for (qsizetype i = 0; i < terms_.size(); ++i) {
        last_.append(rows->value(int(query_.items.size() + i)));
      }
    }
  }
  return true;
}

void PacketReader::goOn(const Variant& continuation)
{
  const VariantArray parts = continuation.toList();
  const VariantArray values = parts.value(0).toList();
  types_ = parts.value(1).toList();
  bool valid = keyed_ && values.size() == terms_.size() && types_.size() == query_.items.size();
  for (const Variant& type : std::as_const(types_)) {
    valid = valid && type.toInt() >= 0 && type.toInt() <= int(DataType::Blob);
  }
  if (!valid) {
    throw RpcError(RpcError::Refused, QStringLiteral("Продължението на заявката не е валидно. Обновете данните."));
  }
  ranges_ = rangesBehind(terms_, values);
}

DataPacketPtr PacketReader::read(const Variant& continuation, qsizetype count)
{
  packet_ = std::make_shared<DataPacket>();
  if (!isNull(continuation)) {
    goOn(continuation);
  }
  const qsizetype rows = !keyed_ || count < 0 ? -1 : qMax<qsizetype>(1, count);
  // An inner transaction: all ranges of a packet see the same state.
  Transaction transaction(access_.db, false);
  bool complete = true;
  for (const Fragment& range : std::as_const(ranges_)) {
    if (!readRange(range, rows)) {
      complete = false;
      break;
    }
  }
  if (packet_->records.fields.isEmpty()) {
    defineFields(nullptr);
  }
  if (!complete) {
    packet_->continuation = VariantArray{Variant(last_), Variant(types_)};
  }
  return packet_;
}

}  // namespace

const StoredQuery& queryOf(const Access& access, const DataRequest& request)
{
  const StoredQuery* query = access.metadata.queryById(request.queryId);
  if (!query) {
    throw RpcError(RpcError::Refused, QStringLiteral("Заявка номер %1 не съществува.").arg(request.queryId));
  }
  return *query;
}

void checkRequest(const Access& access, const DataRequest& request)
{
  if (!isOpenQuery(request.formId)) {
    requireRight(access, request.formId, FormRight::Read);
  }
  PacketReader(access, request);
}

DataPacketPtr readPacket(const Access& access, const DataRequest& request, const Variant& continuation, qsizetype count)
{
  if (!isOpenQuery(request.formId)) {
    requireRight(access, request.formId, FormRight::Read);
  }
  return PacketReader(access, request).read(continuation, count);
}

}  // namespace kalvor::server
