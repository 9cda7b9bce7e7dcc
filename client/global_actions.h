// The main window's commands: one row each, everything about it in the row. The state list that the active form
// sends enables them by name.
#pragma once

#include "registry/form_interfaces.h"

namespace kalvor {

enum class ActionMenu : quint8 { Record, View, Edit };

struct GlobalAction {
  const char* stateName;     // as in the action-state list
  const char16_t* caption;
  const char* shortcut;      // empty = none
  const char* icon;          // icon theme name
  ActionMenu menu;
  bool inToolBar;
  bool startsGroup;          // a separator stands before it
  void (IBaseIntf::*verb)();
};

inline constexpr GlobalAction globalActions[] = {
    {"acGlobalSave", u"Запис", "Ctrl+S", "document-save", ActionMenu::Record, true, false, &IBaseIntf::SaveDocument},
    {"acGlobalCancel", u"Отказ от промените", "Ctrl+Z", "edit-undo", ActionMenu::Record, true, false,
     &IBaseIntf::CancelChanges},
    {"acAddRecord", u"Добавяне на запис", "Ctrl+N", "list-add", ActionMenu::Record, true, true,
     &IBaseIntf::InsertRecord},
    {"acDocumentEdit", u"Редакция", "F2", "document-edit", ActionMenu::Record, true, false, &IBaseIntf::EditRecord},
    {"acDeleteRecord", u"Изтриване", "F8", "edit-delete", ActionMenu::Record, true, false, &IBaseIntf::DeleteRecord},
    {"acExport", u"Експорт", "Ctrl+E", "document-export", ActionMenu::Record, true, true, &IBaseIntf::ExportCDS},
    {"acImport", u"Импорт", "Ctrl+I", "document-import", ActionMenu::Record, true, false, &IBaseIntf::ImportCDS},
    {"acFirst", u"Първи запис", "Alt+Home", "go-first", ActionMenu::View, true, true, &IBaseIntf::FirstRecord},
    {"acPrev", u"Предишен запис", "Alt+PgUp", "go-previous", ActionMenu::View, true, false, &IBaseIntf::PrevRecord},
    {"acNext", u"Следващ запис", "Alt+PgDown", "go-next", ActionMenu::View, true, false, &IBaseIntf::NextRecord},
    {"acLast", u"Последен запис", "Alt+End", "go-last", ActionMenu::View, true, false, &IBaseIntf::LastRecord},
    {"acFieldFilter", u"Филтър по поле", "F3", "view-filter", ActionMenu::View, true, true, &IBaseIntf::FieldFilter},
    {"acTableFilter", u"Табличен филтър", "Ctrl+F3", "table", ActionMenu::View, true, false,
     &IBaseIntf::TableFilter},
    {"acShowAll", u"Премахва филтъра", "Shift+F3", "edit-clear-all", ActionMenu::View, true, false,
     &IBaseIntf::RemoveFilter},
    {"acSort", u"Сортиране", "Shift+F5", "view-sort-ascending", ActionMenu::View, true, false, &IBaseIntf::Sort},
    {"acFind", u"Търсене", "Ctrl+F", "edit-find", ActionMenu::View, true, false, &IBaseIntf::Find},
    {"acGlobalRefresh", u"Обновяване", "F5", "view-refresh", ActionMenu::View, true, false, &IBaseIntf::Refresh},
    {"acSelectAll", u"Избор на всички", "Ctrl+A", "edit-select-all", ActionMenu::Edit, false, false,
     &IBaseIntf::SelectAll},
};

}  // namespace kalvor
