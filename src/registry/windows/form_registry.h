// The form classes that the modules brought, and opening a form by its identifier.
#pragma once

#include <QWidget>
#include <functional>

#include "registry/form_descriptions.h"
#include "registry/form_interfaces.h"

class QMenuBar;

namespace kalvor {

struct FormClass {
  QString name;  // as the form descriptions write it: "TfBrContragents"
  std::function<QWidget*(QWidget* parent)> create;
  std::function<QObject*()> createObject = {};  // of a class without a window, which has no create
};

// The class of a Q_OBJECT form, named without its namespace.
template <class Form>
FormClass formClass()
{
  const QString qualified = QString::fromLatin1(Form::staticMetaObject.className());
  return {qualified.section(QStringLiteral("::"), -1), [](QWidget* parent) -> QWidget* { return new Form(parent); }, {}};
}

// The same for a class without a window, such as a fiscal printer's driver.
template <class Object>
FormClass objectClass()
{
  const QString qualified = QString::fromLatin1(Object::staticMetaObject.className());
  return {qualified.section(QStringLiteral("::"), -1), {}, []() -> QObject* { return new Object; }};
}

BASE_PACKAGE void RegisterFormClass(const FormClass& formClass);  // a name that is registered already is kept
BASE_PACKAGE void UnRegisterFormClass();                          // all of them
BASE_PACKAGE const FormClass* GetRegisterFormClass(const QString& className);  // exact case; null when missing
BASE_PACKAGE QStringList registeredFormClasses();

// A form class registers itself where its module is loaded:
//   const kalvor::FormClassRegistration<TfBrContragents> registration;
template <class Form>
struct FormClassRegistration {
  FormClassRegistration() { RegisterFormClass(formClass<Form>()); }
};

// Opens a form. Filters: the caller's, the user's, the query's parameters. Selection is filled in place by a modal
// form. owner (null = the application) is told of choices and saves and closes the form with itself. Gives what
// DoShowForm gives, 0 when the identifier is unknown or its class is not registered. Refusals (no right to read, no
// query) are shown to the user and give 0 too; no form stays then. A dialog that is still shown when DoShowForm returns
// frees itself when it is closed.
BASE_PACKAGE int RequestForm(int formId, ShowOption options, const FilterArray& callerFilter,
                             const FilterArray& publicFilter, const ParameterArray& parameter,
                             TSelectionList& selection, const TDefaultValues& defaults, QObject* owner,
                             QObject* caller, const TDialogParams* dialogParams = nullptr);
BASE_PACKAGE int RequestForm(int formId, ShowOption options = so_Normal, const FilterArray& callerFilter = {},
                             QObject* owner = nullptr);

// Loads the form modules that lie next to the program (module_libraries.h). The menu bar is the host's: it fills it
// from the registered forms.
BASE_PACKAGE void BuildDynamicFormMenu(QMenuBar* menuBar, const QString& allowedNames);
BASE_PACKAGE void UnloadDynamicPackige();

}  // namespace kalvor
