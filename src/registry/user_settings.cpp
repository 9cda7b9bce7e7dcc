#include "registry/user_settings.h"

#include "forms/form_settings.h"
#include "session/dm.h"

namespace kalvor {
namespace {

const QString formGroupStart = QStringLiteral("Form_Id");
const QString gridGroupMark = QStringLiteral("Tag_Id");

// The entries of a form's group that belong to a kind; grid views are groups of their own.
QStringList entriesOf(StoredSettings kind)
{
  switch (kind) {
    case StoredSettings::FilterAndSort: return {QStringLiteral("Filter"), QStringLiteral("SortOrder")};
    case StoredSettings::FormSizes: return {QStringLiteral("FormWidth"), QStringLiteral("FormHeight")};
    case StoredSettings::GridViews: break;
  }
  return {};
}

void removeEntries(QDomElement group, const QStringList& names)
{
  for (const QString& name : names)
    for (QDomElement entry = group.firstChildElement(name); !entry.isNull(); entry = group.firstChildElement(name))
      group.removeChild(entry);
}

void removeGroups(QDomElement root, const QString& start)
{
  for (QDomElement group = root.firstChildElement(); !group.isNull();) {
    const QDomElement next = group.nextSiblingElement();
    if (group.tagName().startsWith(start))
      root.removeChild(group);
    group = next;
  }
}

// The name of the form's group when the group holds settings of the kind, else empty.
QString formGroupOf(const QDomElement& group, StoredSettings kind)
{
  const QString name = group.tagName();
  if (kind == StoredSettings::GridViews) {
    const qsizetype mark = name.indexOf(gridGroupMark);
    return mark < 0 ? QString() : name.left(mark);
  }
  for (const QString& entry : entriesOf(kind))
    if (!group.firstChildElement(entry).isNull())
      return name;
  return {};
}

}  // namespace

void DeleteUserSettings(QDomDocument& document, int formId, bool grids, bool filterAndSort, bool sizes)
{
  const QDomElement root = document.documentElement();
  const QDomElement group = root.firstChildElement(formSettingsGroup(formId));
  if (filterAndSort)
    removeEntries(group, entriesOf(StoredSettings::FilterAndSort));
  if (sizes)
    removeEntries(group, entriesOf(StoredSettings::FormSizes));
  if (grids)
    removeGroups(root, formSettingsGroup(formId) + gridGroupMark);
}

void DeleteUserSettings(int formId, bool grids, bool filterAndSort, bool sizes)
{
  if (QDomDocument* document = DM ? DM->userSettingsDocument() : nullptr)
    DeleteUserSettings(*document, formId, grids, filterAndSort, sizes);
}

void DeleteUserSettings(int formId, StoredSettings kind)
{
  DeleteUserSettings(formId, kind == StoredSettings::GridViews, kind == StoredSettings::FilterAndSort,
                     kind == StoredSettings::FormSizes);
}

QList<int> formsWithSettings(const QDomDocument& document, StoredSettings kind)
{
  QList<int> forms;
  for (QDomElement group = document.documentElement().firstChildElement(); !group.isNull();
       group = group.nextSiblingElement()) {
    const QString name = formGroupOf(group, kind);
    bool isNumber = false;
    const int formId = name.startsWith(formGroupStart) ? name.mid(formGroupStart.size()).toInt(&isNumber) : 0;
    if (isNumber && !forms.contains(formId))
      forms.append(formId);
  }
  return forms;
}

}  // namespace kalvor
