#include "session/login_lists.h"

#include "session/error_log.h"
#include "session/local_settings_file.h"

namespace kalvor {
namespace {

struct RememberedLogin {
  QString user, object, company;
};

RememberedLogin rememberedLogin()
{
  QStringList lines;
  if (!GetSectionFromIni(QStringLiteral("User"), lines))
    LogError(QStringLiteral("Не може да бъде прочетен последният избор за вход."),
             QStringLiteral("uLogin.LoadCombosFromIni"));
  if (lines.size() <= 2)
    return {};
  return {lineValue(lines[0]), lineValue(lines[1]), lineValue(lines[2])};
}

}  // namespace

void LoginList::selectId(const QString& id)
{
  selected_ = -1;
  for (int i = 0; i < items_.size() && selected_ < 0; ++i)
    if (items_[i].store.Id == id)
      selected_ = i;
}

QString LoginList::selectedId() const
{
  return selected_ < 0 ? QString() : items_[selected_].store.Id;
}

void LoginList::clear()
{
  items_.clear();
  selected_ = -1;
}

void LoginList::fill(const Variant& rows)
{
  clear();
  for (const Variant& row : rows.toList()) {
    const VariantArray cells = row.toList();
    if (cells.isEmpty())
      continue;
    const QString id = variantText(cells[0]);
    items_.append({cells.size() > 1 ? variantText(cells[1]) : id, {id}});
  }
}

bool LoginLists::request(const QString& operation, const VariantArray& keys, Variant& rows)
{
  VariantArray arguments = keys;
  arguments.append(Variant());
  const Variant result = calls_.Call(operation, arguments);
  rows = arguments.last();
  return !isNull(result) && result.toInt() == 0;
}

void LoginLists::LoadCombosFromIni()
{
  companies.clear();
  objects.clear();
  users.clear();
  const RememberedLogin remembered = rememberedLogin();
  Variant rows;
  request(QStringLiteral("GetCompaniesList"), {}, rows);
  companies.fill(rows);
  companies.selectId(remembered.company);
  if (companies.selected() < 0)
    return;
  if (request(QStringLiteral("GetBGroupsList"), {companies.selectedId()}, rows)) {
    objects.fill(rows);
    objects.selectId(remembered.object);
  }
  if (request(QStringLiteral("GetUsersList"), {remembered.object, remembered.company}, rows)) {
    users.fill(rows);
    users.selectId(remembered.user);
  }
}

void LoginLists::companyChanged()
{
  Variant rows;
  if (!request(QStringLiteral("GetBGroupsList"), {companies.selectedId()}, rows))
    return;
  objects.clear();
  users.clear();
  objects.fill(rows);
}

void LoginLists::objectChanged()
{
  Variant rows;
  if (request(QStringLiteral("GetUsersList"), {objects.selectedId(), companies.selectedId()}, rows))
    users.fill(rows);
}

}  // namespace kalvor
