#include "administration.h"

#include <QToolButton>
#include <QVBoxLayout>

#include "registry/windows/form_registry.h"
#include "widgets/theme.h"

namespace kalvor {

namespace {

constexpr int userList = 200;
constexpr int fieldDescriptions = 206;
constexpr int queryDescriptions = 208;
constexpr int passwordForm = 252;

}  // namespace

// --- Users -----------------------------------------------------------------------------------------------------

TfEdUser::TfEdUser(QWidget* parent) : TfBaseEditMasterDetail(parent)
{
  addNamedAction(QStringLiteral("acSetPassword"), QStringLiteral("Парола"), QKeySequence(QStringLiteral("F7")),
                 [this] { setPassword(); });
  resize(760, 400);
}

// A user is known by the code that is typed.
void TfEdUser::GenerateID(TClientDataSet* dataSet)
{
  if (dataSet != cdsMaster()) {
    TfBaseEditMasterDetail::GenerateID(dataSet);
  }
}

QString TfEdUser::detailKeyField(int) const
{
  return QStringLiteral("S_UserGroups.User_Id");
}

bool TfEdUser::isLockedField(TField* field)
{
  return field == cdsMaster()->FindField(u"Id") && cdsMaster()->State() == DataSetState::Edit;
}

void TfEdUser::buildLayout()
{
  TfBaseEditMasterDetail::buildLayout();
  auto* button = new QToolButton(this);
  button->setObjectName(QStringLiteral("btnPassword"));
  button->setDefaultAction(action(QStringLiteral("acSetPassword")));
  button->setText(QStringLiteral("Парола (F7)"));
  button->setFocusPolicy(Qt::TabFocus);
  auto* column = qobject_cast<QVBoxLayout*>(layout());
  column->addWidget(button, 0, Qt::AlignLeft);
  column->setContentsMargins(0, 0, 0, spacing::tight);
}

void TfEdUser::CustomUpdateActionState()
{
  const TClientDataSet* users = cdsMaster();
  action(QStringLiteral("acSetPassword"))->setEnabled(users->Active() && !users->IsEmpty() && !CheckState() && !hasChanges());
}

void TfEdUser::setPassword()
{
  TDialogParams params;
  params.Values = {cdsMaster()->FieldByName(u"Id")->Value()};
  TSelectionList selection;
  RequestForm(passwordForm, so_ShowModal, {}, {}, {}, selection, {}, this, this, &params);
}

// --- Rights ----------------------------------------------------------------------------------------------------

TfEdUserRights::TfEdUserRights(QWidget* parent) : TfBaseEditGridFilterPanel(parent)
{
  addFilterLookup(QStringLiteral("Потребител"), QStringLiteral("User_Id"), userList, QStringLiteral("Id"));
  addFilterEdit(QStringLiteral("Име на форма"), QStringLiteral("Form_Caption"));
  addFilterEdit(QStringLiteral("Филтър за достъп"), QStringLiteral("SecurityFilter"));
  resize(1120, 520);
}

FilterArray TfEdUserRights::BuildTabFilter()
{
  return controlFilter();
}

// --- Descriptions ----------------------------------------------------------------------------------------------

bool TfEdFormDescription::CheckDataModification(bool, bool remove, bool insert)
{
  return !remove && !insert;
}

TfEdFieldDescriptions::TfEdFieldDescriptions(QWidget* parent) : TfBaseEditGridFilterMultyQuery(parent)
{
  addFilterEdit(QStringLiteral("Описание"), QStringLiteral("S_QueryList_Description"));
  addFilterEdit(QStringLiteral("Поле"), QStringLiteral("FieldName"));
  addFilterEdit(QStringLiteral("Име"), QStringLiteral("Caption"));
  addLink({QStringLiteral("Описания на полета"), fieldDescriptions, {}});
  addLink({QStringLiteral("Заявки"), queryDescriptions, {}});
  resize(1120, 520);
}

FilterArray TfEdFieldDescriptions::BuildTabFilter()
{
  return controlFilter();
}

bool TfEdFieldDescriptions::CheckDataModification(bool, bool remove, bool insert)
{
  return !remove && !insert;
}

}  // namespace kalvor
