#include "forms/windows/base_common.h"

#include <QKeyEvent>

#include "common/sql_text.h"
#include "forms/messages.h"
#include "registry/form_descriptions.h"
#include "registry/windows/help_topics.h"
#include "session/dm.h"

namespace kalvor {

namespace {

constexpr int modalAccepted = 1;
constexpr int modalLeft = 2;

struct BorderRow {
  int style;
  Qt::WindowFlags flags;
};
constexpr BorderRow borderRows[] = {
    {bsNone, Qt::Dialog | Qt::FramelessWindowHint},
    {bsToolWindow, Qt::Tool | Qt::WindowTitleHint | Qt::WindowCloseButtonHint},
    {bsSizeToolWin, Qt::Tool | Qt::WindowTitleHint | Qt::WindowCloseButtonHint},
};

Qt::WindowFlags borderFlags(int style)
{
  for (const BorderRow& row : borderRows) {
    if (row.style == style) {
      return row.flags;
    }
  }
  return Qt::Dialog | Qt::WindowTitleHint | Qt::WindowSystemMenuHint | Qt::WindowCloseButtonHint;
}

}  // namespace

TfBaseCommon::TfBaseCommon(QWidget* parent) : QDialog(parent), uniqueId_(CreateUniqueID()) {}

TfBaseCommon::~TfBaseCommon() = default;

void TfBaseCommon::SetFormRights(int formId, bool defaultRight)
{
  rights_ = loadFormRights(formId, defaultRight, LocalData.UserId, DM ? &DM->cdsTreeView : nullptr);
  rights_.AnnulRight = false;
}

bool TfBaseCommon::CheckFormID(const QString& id) const
{
  return id == uniqueId_;
}

void TfBaseCommon::requireReadRight(int formId) const
{
  if (!rights_.ReadRight) {
    throw DataError(rightsRefusal(_err_ReadNotAllowed, formId));
  }
}

void TfBaseCommon::prepare(int formId, ShowOption options, int borderStyle)
{
  formId_ = formId;
  options_ = options;
  setWindowFlags(borderFlags(borderStyle));
  const TFormData* description = DM ? GetFromDataObject(QString::number(formId), 0) : nullptr;
  if (description && !description->Caption.isEmpty()) {
    setWindowTitle(description->Caption);
  }
}

void TfBaseCommon::takeParams(const TDialogParams&) {}

int TfBaseCommon::runModal()
{
  return exec() == Accepted ? modalAccepted : modalLeft;
}

int TfBaseCommon::DoShowForm(int formId, ShowOption options)
{
  return DoShowForm(formId, options, TDialogParams());
}

int TfBaseCommon::DoShowForm(int formId, ShowOption options, const TDialogParams& params)
{
  requireReadRight(formId);
  prepare(formId, options, params.BorderStyle);
  takeParams(params);
  return runModal();
}

void TfBaseCommon::done(int result)
{
  QDialog::done(result);
  if (IMainFormIntf* main = mainForm()) {
    main->WindowClosed(uniqueId_);
  }
}

void TfBaseCommon::keyPressEvent(QKeyEvent* event)
{
  if (event->key() == Qt::Key_F1) {
    showHelpTopic(formId_);
    return;
  }
  QDialog::keyPressEvent(event);
}

}  // namespace kalvor
