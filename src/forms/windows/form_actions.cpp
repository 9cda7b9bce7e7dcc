#include "forms/windows/form_actions.h"

#include <QAction>
#include <QIcon>
#include <algorithm>
#include <array>

namespace kalvor {

namespace {

// Shortcuts beside F1, F6 and Shift+F6 are our own choice (docs/decisions.md).
constexpr std::array formActionTable{
    FormActionRow{u"acSave", u"Запис", "Ctrl+S", "document-save", true},
    FormActionRow{u"acCancel", u"Отказ", "Ctrl+Z", "edit-undo", true},
    FormActionRow{u"acExport", u"Експорт", "", "document-export", false},
    FormActionRow{u"acInsertRecord", u"Добавяне на запис", "Ctrl+N", "list-add", true},
    FormActionRow{u"acDeleteRecord", u"Изтриване", "F8", "edit-delete", true},
    FormActionRow{u"acCopyRecord", u"Копиране на запис", "", "edit-copy", false},
    FormActionRow{u"acEditRecord", u"Редакция", "F2", "document-edit", true},
    FormActionRow{u"acFieldFilter", u"Филтър", "F3", "view-filter", true},
    FormActionRow{u"acTableFilter", u"Филтър на таблица", "Ctrl+F3", "table", true},
    FormActionRow{u"acRemoveFilter", u"Премахва филтър", "Shift+F3", "edit-clear-all", true},
    FormActionRow{u"acFind", u"Търсене", "Ctrl+F", "edit-find", true},
    FormActionRow{u"acRefresh", u"Обновяване", "F5", "view-refresh", true},
    FormActionRow{u"acPrint", u"Печат", "Ctrl+P", "document-print", false},
    FormActionRow{u"acPrintSelect", u"Избор на печатна форма", "", "document-print", false},
    FormActionRow{u"acGetDetails", u"", "", "", false},
    FormActionRow{u"acSort", u"Сортиране", "Shift+F5", "view-sort-ascending", true},
    FormActionRow{u"acClose", u"", "", "window-close", false},
    FormActionRow{u"acTextPrint", u"Текстови печат", "", "document-print", false},
    FormActionRow{u"acPreview", u"", "", "document-print-preview", false},
    FormActionRow{u"acSelect", u"", "", "dialog-ok", false},
    FormActionRow{u"acCopyNew", u"", "Ctrl+Shift+N", "edit-duplicate", false},
    FormActionRow{u"acPostDocument", u"Осчетоводи", "F6", "dialog-ok-apply", false},
    FormActionRow{u"acImport", u"", "", "document-import", false},
    FormActionRow{u"acPostAndPrintDocument", u"Осчетоводяване и печат", "Shift+F6", "document-print", false},
    FormActionRow{u"acReCalcDocument", u"", "", "view-refresh", false},
    FormActionRow{u"acAnnulDocument", u"Анулиране на документ", "", "edit-delete-remove", false},
    FormActionRow{u"acHelp", u"Помощ", "F1", "help-contents", false},
};

}  // namespace

std::span<const FormActionRow> formActionRows()
{
  return formActionTable;
}

QKeySequence formActionShortcut(const QString& name)
{
  const auto row = std::find_if(formActionTable.begin(), formActionTable.end(),
                                [&](const FormActionRow& entry) { return name == QStringView(entry.name); });
  return row == formActionTable.end() ? QKeySequence() : QKeySequence(QLatin1String(row->shortcut));
}

FormActions::FormActions(QWidget* form, Runner runner) : form_(form), runner_(std::move(runner))
{
  for (const FormActionRow& row : formActionTable) {
    QAction* action = add(QString::fromUtf16(row.name), QString::fromUtf16(row.caption), QKeySequence(QLatin1String(row.shortcut)));
    if (*row.icon) {
      action->setIcon(QIcon::fromTheme(QLatin1String(row.icon)));
    }
  }
  setEnabled(QStringLiteral("acReCalcDocument"), false);
}

void FormActions::leaveShortcutsToMainWindow(bool leave)
{
  for (const FormActionRow& row : formActionTable) {
    if (row.mainWindowHasIt) {
      find(QString::fromUtf16(row.name))->setShortcut(leave ? QKeySequence() : QKeySequence(QLatin1String(row.shortcut)));
    }
  }
}

QAction* FormActions::add(const QString& name, const QString& caption, const QKeySequence& shortcut)
{
  auto* action = new QAction(caption, form_);
  action->setObjectName(name);
  action->setShortcut(shortcut);
  action->setShortcutContext(Qt::WidgetWithChildrenShortcut);
  QObject::connect(action, &QAction::triggered, form_, [this, name] { run(name); });
  form_->addAction(action);
  actions_.insert(name, action);
  return action;
}

void FormActions::bind(const QString& name, std::function<void()> handler, const QString& context)
{
  bindings_.insert(name, {std::move(handler), context});
}

bool FormActions::isEnabled(const QString& name) const
{
  const QAction* action = find(name);
  return action && action->isEnabled();
}

void FormActions::setEnabled(const QString& name, bool on)
{
  if (QAction* action = find(name)) {
    action->setEnabled(on);
  }
}

bool FormActions::execute(const QString& name)
{
  if (!isEnabled(name)) {
    return false;
  }
  run(name);
  return true;
}

void FormActions::run(const QString& name)
{
  const Binding binding = bindings_.value(name);
  if (binding.handler) {
    runner_(binding.context, binding.handler);
  }
}

}  // namespace kalvor
