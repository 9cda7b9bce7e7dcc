#include "server/updates/update_errors.h"

namespace kalvor::server {

RpcError invalidValue(const QString& caption)
{
  return {RpcError::Invalid, QStringLiteral("Некоректна стойност за поле: %1.").arg(caption)};
}

RpcError tooLong(const QString& caption, int size)
{
  return {RpcError::Invalid, QStringLiteral("Стойността за поле „%1“ е по-дълга от %2 знака.").arg(caption).arg(size)};
}

RpcError outsideSecurity(int formId)
{
  return {RpcError::Forbidden, QStringLiteral("Записът е извън данните, до които имате достъп във форма с код : %1"
                                              "\r\nМоля, обърнете се към системния администратор за отстраняване на проблема!")
                                   .arg(formId)};
}

RpcError conflict(const QString& user, const QDateTime& moment, const QStringList& captions)
{
  QString text = user.isEmpty() ? QStringLiteral("Записът е променен от друг потребител")
                                : QStringLiteral("Записът е променен от потребител %1").arg(user);
  if (moment.isValid()) {
    text += QStringLiteral(" на %1").arg(moment.toString(QStringLiteral("dd.MM.yyyy HH:mm:ss")));
  }
  return {RpcError::Conflict, text + QStringLiteral(", след като сте го отворили.\r\nПроменени полета: %1.\r\n"
                                                    "Обновете данните и повторете промените си.").arg(captions.join(u", "))};
}

RpcError constraintError(const StoreError& error, const UpdateTarget& target)
{
  if (error.kind() != StoreError::Kind::Constraint) {
    throw error;
  }
  QStringList captions;
  for (const QString& column : error.columns()) {
    if (!target.stamps.company || target.stamps.company->name.compare(column, Qt::CaseInsensitive) != 0) {
      captions.append(target.captionOf(column));
    }
  }
  switch (error.rule()) {
    case StoreError::Rule::Required:
      return {RpcError::Invalid, QStringLiteral("Полето „%1“ трябва да има стойност.").arg(captions.value(0))};
    case StoreError::Rule::Unique:
      return {RpcError::Invalid, QStringLiteral("Вече има запис със същата стойност за: %1.").arg(captions.join(u", "))};
    case StoreError::Rule::Reference:
      return {RpcError::Invalid, QStringLiteral("Записът се използва от други данни или сочи към данни, които не съществуват.")};
    default: throw error;
  }
}

}  // namespace kalvor::server
