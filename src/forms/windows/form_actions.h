// The named actions that every form has: one table row an action.
#pragma once

#include <QHash>
#include <QKeySequence>
#include <QWidget>
#include <functional>
#include <span>

#include "layer_export.h"

class QAction;

namespace kalvor {

struct FormActionRow {
  const char16_t* name;
  const char16_t* caption;
  const char* shortcut;  // portable text; empty = none
  const char* icon;      // name in the icon theme; empty = none
  bool mainWindowHasIt;  // the main window's command carries the shortcut while the form is a child window
};

// Of every form. Two claims on one key silence both, so a child window leaves to the main window what that offers.
BASE_PACKAGE std::span<const FormActionRow> formActionRows();
BASE_PACKAGE QKeySequence formActionShortcut(const QString& name);

// The actions of one form. What an action does is bound by the form; without that it does nothing.
class FormActions {
 public:
  // Runs a body under its context for the error log.
  using Runner = std::function<void(const QString& context, const std::function<void()>& body)>;
  FormActions(QWidget* form, Runner runner);

  QAction* find(const QString& name) const { return actions_.value(name); }
  QAction* add(const QString& name, const QString& caption, const QKeySequence& shortcut);
  void bind(const QString& name, std::function<void()> handler, const QString& context);
  bool isBound(const QString& name) const { return bindings_.contains(name); }
  bool isEnabled(const QString& name) const;
  void setEnabled(const QString& name, bool on);
  bool execute(const QString& name);
  void leaveShortcutsToMainWindow(bool leave);

 private:
  struct Binding {
    std::function<void()> handler;
    QString context;
  };
  void run(const QString& name);

  QWidget* form_;
  Runner runner_;
  QHash<QString, QAction*> actions_;
  QHash<QString, Binding> bindings_;
};

}  // namespace kalvor
