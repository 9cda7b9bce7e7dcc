#include "forms/windows/base_dialog.h"

#include <QAction>
#include <QLabel>
#include <QTabWidget>
#include <QVBoxLayout>

#include "registry/windows/help_topics.h"
#include "widgets/theme.h"

namespace kalvor {

TfBaseDialog::TfBaseDialog(QWidget* parent)
    : TfBaseCommon(parent), pconControls(new QTabWidget), ownPage(new QWidget), acHelp(new QAction(this)),
      column_(new QVBoxLayout(this))
{
  pconControls->setObjectName(QStringLiteral("pconControls"));
  ownPage->setObjectName(QStringLiteral("tsPage"));
  pconControls->addTab(ownPage, QString());
  pconControls->setTabVisible(0, false);
  column_->addWidget(pconControls);
  acHelp->setObjectName(QStringLiteral("acHelp"));
  acHelp->setText(QStringLiteral("Помощ"));
  acHelp->setIcon(icon(QStringLiteral("help-contents")));
  acHelp->setShortcut(QKeySequence(Qt::Key_F1));
  addAction(acHelp);
  connect(acHelp, &QAction::triggered, this, [this] { showHelpTopic(formId()); });
}

void TfBaseDialog::takeParams(const TDialogParams& params)
{
  const int own = pconControls->indexOf(ownPage);
  const bool shown = !params.PageCaption.isEmpty();
  pconControls->setTabText(own, params.PageCaption);
  pconControls->setTabVisible(own, shown);
  if (shown) {
    pconControls->setCurrentWidget(ownPage);
  }
}

TfBaseHintDialog::TfBaseHintDialog(QWidget* parent)
    : TfBaseDialog(parent), shpHint(new QWidget), lbHintCaption(new QLabel), lbHint(new QLabel)
{
  shpHint->setObjectName(QStringLiteral("shpHint"));
  shpHint->setAutoFillBackground(true);
  QPalette colors = shpHint->palette();
  colors.setColor(QPalette::Window, theme().title);
  shpHint->setPalette(colors);
  lbHintCaption->setObjectName(QStringLiteral("lbHintCaption"));
  lbHint->setObjectName(QStringLiteral("lbHint"));
  lbHint->setWordWrap(true);
  for (QLabel* label : {lbHintCaption, lbHint}) {
    label->setTextFormat(Qt::PlainText);
  }
  QFont bold = lbHintCaption->font();
  bold.setBold(true);
  lbHintCaption->setFont(bold);
  auto* texts = new QVBoxLayout(shpHint);
  texts->setContentsMargins(spacing::wide, spacing::normal, spacing::wide, spacing::normal);
  texts->setSpacing(spacing::tight);
  texts->addWidget(lbHintCaption);
  texts->addWidget(lbHint);
  column()->insertWidget(0, shpHint);
}

void TfBaseHintDialog::takeParams(const TDialogParams& params)
{
  TfBaseDialog::takeParams(params);
  lbHintCaption->setText(params.HintCaption);
  lbHint->setText(params.HintText);
  integerValue = params.IntegerValue;
  values = params.Values;
}

}  // namespace kalvor
