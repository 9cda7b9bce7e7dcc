#include "common/windows/export_dialog.h"

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QFileInfo>
#include <QGridLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QToolButton>

#include "common/messages.h"
#include "common/save_file_question.h"
#include "platform/ports.h"
#include "session/error_log.h"
#include "widgets/theme.h"

namespace kalvor {

namespace {

constexpr QSize exportDialogSize(720, 460);

struct ExportTypeRow {
  const char16_t* name;
  const char16_t* extension;
  const char16_t* pattern;
};
constexpr ExportTypeRow exportTypes[] = {
    {u"XLS", u"xls", u"Excel Files (*.xls);;All Files (*.*)"},
    {u"TXT", u"txt", u"Text Files (*.txt);;All Files (*.*)"},
};

// Errors of the choice's files: what the user is told, and what only the log needs.
void tellingErrors(const QString& context, const std::function<void()>& body)
{
  try {
    body();
  } catch (const std::exception& error) {
    LogError(errorText(error), context);
    showError(errorText(error));
  }
}

}  // namespace

TfExportOptions::TfExportOptions(QWidget* parent) : QDialog(parent)
{
  setObjectName(QStringLiteral("TfExportOptions"));
  setWindowTitle(QStringLiteral("Експорт на данни"));
  buildWindow();
}

// --- The window -----------------------------------------------------------------------------------------------

QListWidget* TfExportOptions::addList(const char* name, const QString& caption)
{
  auto* list = new QListWidget(this);
  list->setObjectName(QLatin1String(name));
  list->setAccessibleName(QString(caption).remove(u'&'));
  list->setSelectionMode(QAbstractItemView::ExtendedSelection);
  list->installEventFilter(this);
  return list;
}

void TfExportOptions::buildWindow()
{
  const QString fieldsCaption = QStringLiteral("&Полета");
  const QString chosenCaption = QStringLiteral("И&збрани полета");
  auto* fieldsLabel = new QLabel(fieldsCaption, this);
  auto* chosenLabel = new QLabel(chosenCaption, this);
  source_ = addList("lbSource", fieldsCaption);

  struct ArrowRow {
    const char* name;
    const char16_t* caption;
    const char* icon;
    const char* shortcut;
    void (TfExportOptions::*body)();
  };
  static constexpr ArrowRow arrows[] = {
      {"btnAdd", u"Добавя полетата", "go-next", "Alt+Right", &TfExportOptions::moveToTarget},
      {"btnRemove", u"Маха полетата", "go-previous", "Alt+Left", &TfExportOptions::moveToSource},
  };
  auto* middle = new QVBoxLayout;
  middle->addStretch(1);
  for (const ArrowRow& row : arrows) {
    auto* action = new QAction(icon(QLatin1String(row.icon)), QString::fromUtf16(row.caption), this);
    action->setShortcut(QKeySequence(QLatin1String(row.shortcut)));
    action->setToolTip(QStringLiteral("%1 (%2)").arg(action->text(), action->shortcut().toString(QKeySequence::NativeText)));
    connect(action, &QAction::triggered, this, row.body);
    addAction(action);
    auto* button = new QToolButton(this);
    button->setObjectName(QLatin1String(row.name));
    button->setDefaultAction(action);
    button->setFocusPolicy(Qt::NoFocus);
    middle->addWidget(button);
  }
  middle->addStretch(1);
  target_ = addList("lbTarget", chosenCaption);
  all_ = new QCheckBox(QStringLiteral("&Всички"), this);
  all_->setObjectName(QStringLiteral("cbxAll"));
  fieldsLabel->setBuddy(source_);
  chosenLabel->setBuddy(target_);
  connect(source_, &QListWidget::itemDoubleClicked, this, &TfExportOptions::moveToTarget);
  connect(target_, &QListWidget::itemDoubleClicked, this, &TfExportOptions::moveToSource);

  auto* lists = new QGridLayout;
  lists->setSpacing(spacing::normal);
  lists->addWidget(fieldsLabel, 0, 0);
  lists->addWidget(chosenLabel, 0, 2);
  lists->addWidget(source_, 1, 0);
  lists->addLayout(middle, 1, 1);
  lists->addWidget(target_, 1, 2);
  lists->addWidget(all_, 2, 0);
  lists->setColumnStretch(0, 1);
  lists->setColumnStretch(2, 1);
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(spacing::wide, spacing::wide, spacing::wide, spacing::wide);
  column->setSpacing(spacing::normal);
  column->addLayout(lists, 1);
  column->addWidget(fileRow());
  column->addWidget(buttonRow());
  resize(exportDialogSize);
}

QWidget* TfExportOptions::fileRow()
{
  auto* row = new QWidget(this);
  type_ = new QComboBox(row);
  type_->setObjectName(QStringLiteral("cbType"));
  for (const ExportTypeRow& type : exportTypes) {
    type_->addItem(QString::fromUtf16(type.name));
  }
  connect(type_, &QComboBox::currentIndexChanged, this, &TfExportOptions::typeChanged);
  path_ = new QLineEdit(row);
  path_->setObjectName(QStringLiteral("ebxPath"));
  auto* open = new QToolButton(row);
  open->setObjectName(QStringLiteral("btnOpen"));
  open->setText(QStringLiteral("…"));
  open->setIcon(icon(QStringLiteral("document-open")));
  open->setShortcut(QKeySequence(QStringLiteral("Ctrl+O")));
  open->setToolTip(QStringLiteral("Избор на файл (Ctrl+O)"));
  connect(open, &QToolButton::clicked, this, &TfExportOptions::openClicked);
  auto* typeLabel = new QLabel(QStringLiteral("&Тип"), row);
  typeLabel->setBuddy(type_);
  auto* pathLabel = new QLabel(QStringLiteral("&Файл"), row);
  pathLabel->setBuddy(path_);
  auto* line = new QHBoxLayout(row);
  line->setContentsMargins(0, 0, 0, 0);
  line->setSpacing(spacing::normal);
  for (QWidget* widget : {static_cast<QWidget*>(typeLabel), static_cast<QWidget*>(type_),
                          static_cast<QWidget*>(pathLabel)}) {
    line->addWidget(widget);
  }
  line->addWidget(path_, 1);
  line->addWidget(open);
  return row;
}

QWidget* TfExportOptions::buttonRow()
{
  struct ButtonRow {
    const char* name;
    const char16_t* caption;
    void (TfExportOptions::*body)();
  };
  static constexpr ButtonRow rows[] = {
      {"btnSave", u"&Запази", &TfExportOptions::saveClicked},
      {"btnLoad", u"Заре&ди", &TfExportOptions::loadClicked},
      {nullptr, nullptr, nullptr},
      {"btnExport", u"&Експорт", &TfExportOptions::exportClicked},
      {"btnCancel", u"&Отказ", nullptr},
  };
  auto* row = new QWidget(this);
  auto* line = new QHBoxLayout(row);
  line->setContentsMargins(0, 0, 0, 0);
  line->setSpacing(spacing::normal);
  for (const ButtonRow& button : rows) {
    if (!button.name) {
      line->addStretch(1);
      continue;
    }
    auto* push = new QPushButton(QString::fromUtf16(button.caption), row);
    push->setObjectName(QLatin1String(button.name));
    push->setAutoDefault(false);
    if (button.body) {
      connect(push, &QPushButton::clicked, this, button.body);
    } else {
      connect(push, &QPushButton::clicked, this, &QDialog::reject);
    }
    line->addWidget(push);
  }
  row->findChild<QPushButton*>(QStringLiteral("btnExport"))->setDefault(true);
  return row;
}

// --- Lists ----------------------------------------------------------------------------------------------------

void TfExportOptions::FillListBox(const TClientDataSet* master, const TClientDataSet* detail)
{
  choice_.fill(master, detail);
  showLists();
  source_->setFocus();
}

int TfExportOptions::SeparatorPosition() const
{
  return choice_.source().separatorPosition();
}

// The current rows stay where they are, so that the next field is chosen by the same key.
void TfExportOptions::showLists()
{
  const std::pair<QListWidget*, const ExportCaptions*> sides[] = {{source_, &choice_.source()},
                                                                  {target_, &choice_.target()}};
  for (const auto& [list, captions] : sides) {
    const int row = std::max(list->currentRow(), 0);
    list->clear();
    list->addItems(captions->texts());
    if (const int separator = captions->separatorPosition(); separator >= 0) {
      list->item(separator)->setTextAlignment(Qt::AlignCenter);
    }
    list->setCurrentRow(std::min(row, list->count() - 1));
  }
}

QList<int> TfExportOptions::positionsOf(QListWidget* list) const
{
  if (all_->isChecked()) {
    list->selectAll();
  }
  QList<int> positions;
  for (const QListWidgetItem* item : list->selectedItems()) {
    positions.append(list->row(item));
  }
  return positions;
}

void TfExportOptions::moveToTarget()
{
  choice_.take(positionsOf(source_));
  showLists();
}

void TfExportOptions::moveToSource()
{
  choice_.giveBack(positionsOf(target_));
  showLists();
}

bool TfExportOptions::eventFilter(QObject* watched, QEvent* event)
{
  if (event->type() == QEvent::KeyPress && (watched == source_ || watched == target_)) {
    const auto* key = static_cast<QKeyEvent*>(event);
    const bool plain = !(key->modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::ShiftModifier));
    if (plain && (key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter)) {
      watched == source_ ? moveToTarget() : moveToSource();
      return true;
    }
  }
  return QDialog::eventFilter(watched, event);
}

// --- File -----------------------------------------------------------------------------------------------------

ExportFileType TfExportOptions::fileType() const
{
  return ExportFileType(type_->currentIndex());
}

QString TfExportOptions::path() const
{
  return path_->text().trimmed();
}

// A path with the other kind's own extension follows the kind.
void TfExportOptions::typeChanged()
{
  const int type = type_->currentIndex();
  const QString before = u'.' + QString::fromUtf16(exportTypes[1 - type].extension);
  QString text = path_->text();
  if (text.endsWith(before, Qt::CaseInsensitive)) {
    text.chop(before.size());
    path_->setText(text + u'.' + QString::fromUtf16(exportTypes[type].extension));
  }
}

void TfExportOptions::openClicked()
{
  const ExportTypeRow& type = exportTypes[type_->currentIndex()];
  const QString chosen =
      askSaveFile(_inf_EnterFileName, QString::fromUtf16(type.pattern), QString::fromUtf16(type.extension));
  if (!chosen.isEmpty()) {
    path_->setText(chosen);
  }
}

void TfExportOptions::saveClicked()
{
  tellingErrors(QStringLiteral("TfExportOptions.btnSaveClick"), [this] {
    QString name = userPrompt().chooseFileIn(ExportChoice::folder(), QStringLiteral("Запис на избора"),
                                             exportChoicePattern, true);
    if (name.isEmpty()) {
      return;
    }
    if (QFileInfo(name).suffix().isEmpty()) {
      name += QStringLiteral(".exp");
    }
    choice_.save(name);
  });
}

void TfExportOptions::loadClicked()
{
  tellingErrors(QStringLiteral("TfExportOptions.btnLoadClick"), [this] {
    const QString name = userPrompt().chooseFileIn(ExportChoice::folder(), QStringLiteral("Зареждане на избор"),
                                                   exportChoicePattern, false);
    if (!name.isEmpty()) {
      choice_.load(name);
    }
  });
  showLists();
}

void TfExportOptions::exportClicked()
{
  if (choice_.target().isEmpty()) {
    showError(_err_NoExportFields);
    source_->setFocus();
  } else if (!isExportPath(path())) {
    showError(_err_ExportPath);
    path_->setFocus();
  } else {
    masterList_ = choice_.target().masterList();
    detailList_ = choice_.target().detailList();
    accept();
  }
}

}  // namespace kalvor
