#include "server/operations/argument_values.h"

#include "rpc/rpc_error.h"
#include "server/queries/filter_values.h"
#include "server/store/connection.h"

namespace kalvor::server {

namespace {

[[noreturn]] void refuseArgument(const QString& name, const QString& expected)
{
  throw RpcError(RpcError::BadArguments, QStringLiteral("Стойността за „%1“ трябва да е %2.").arg(name, expected));
}

bool isSimple(const Variant& value)
{
  return value.typeId() != QMetaType::QVariantList && value.typeId() != QMetaType::QByteArray &&
         value.typeId() < int(QMetaType::User);
}

bool isEmptyValue(const Variant& value)
{
  return isNull(value) || (value.typeId() == QMetaType::QString && value.toString().trimmed().isEmpty());
}

Variant convertedArgument(const Variant& value, DataType type, const QString& name, const QString& expected)
{
  const auto result = isSimple(value) ? filterValue(type, value) : std::nullopt;
  if (!result) {
    refuseArgument(name, expected);
  }
  return *result;
}

}  // namespace

QString textArgument(const Variant& value, const QString& name)
{
  if (!isNull(value) && !isSimple(value)) {
    refuseArgument(name, QStringLiteral("текст"));
  }
  return variantText(value);
}

qint64 amountArgument(const Variant& value, const QString& name)
{
  return isEmptyValue(value) ? 0 : scaled(convertedArgument(value, DataType::Float, name, QStringLiteral("число")).toDouble());
}

qint64 wholeArgument(const Variant& value, const QString& name)
{
  return isEmptyValue(value)
             ? 0 : convertedArgument(value, DataType::LargeInt, name, QStringLiteral("цяло число")).toLongLong();
}

bool flagArgument(const Variant& value, const QString& name)
{
  return !isEmptyValue(value) && (value.typeId() == QMetaType::Bool ? value.toBool() : wholeArgument(value, name) != 0);
}

QDate dateArgument(const Variant& value, const QString& name)
{
  return isEmptyValue(value) ? QDate()
                             : convertedArgument(value, DataType::Date, name, QStringLiteral("дата")).toDate();
}

}  // namespace kalvor::server
