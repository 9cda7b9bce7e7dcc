// How near a row of prices or discounts is to a line: conditions that find it and the order that they win in.
#pragma once

#include <QDate>

#include "server/sql/fragment.h"

namespace kalvor::server {

enum class Nearness : quint8 { Everybody, PriceGroup, Contragent };

// By which of its two columns is filled in; a row with both belongs to the contractor.
constexpr Nearness nearnessOf(bool hasContragent, bool hasPriceGroup)
{
  return hasContragent ? Nearness::Contragent : hasPriceGroup ? Nearness::PriceGroup : Nearness::Everybody;
}

// Two conditions instead of one with OR, so that an index finds the contractor's few rows among everybody's.
inline Fragment ofContragent(const QString& contragentId)
{
  return {QStringLiteral("Contragent_Id = ?"), {contragentId}};
}
// The group may be invalid: then only the rows without one.
inline Fragment ofEverybody(const Variant& priceGroupId)
{
  return {QStringLiteral("Contragent_Id IS NULL AND (PriceGroup_Id IS NULL OR PriceGroup_Id = ?)"), {priceGroupId}};
}
// To be appended; first and last day included, none = no limit.
inline Fragment validOn(const QDate& day)
{
  return {QStringLiteral(" AND (StartDate IS NULL OR StartDate <= ?) AND (EndDate IS NULL OR EndDate >= ?)"),
          {day, day}};
}

}  // namespace kalvor::server
