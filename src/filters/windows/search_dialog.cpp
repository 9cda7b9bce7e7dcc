#include "filters/windows/search_dialog.h"

#include <QAction>
#include <QCheckBox>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <limits>

#include "forms/messages.h"
#include "platform/ports.h"
#include "session/dm.h"
#include "session/settings_document.h"
#include "widgets/data_control.h"
#include "widgets/db_grid.h"
#include "widgets/theme.h"

namespace kalvor {

namespace {

enum SearchTag : int { stSearch, stNext, stTyping };
constexpr int searchReadPacket = 2000;  // reading on for a search must not ask for every 32 records
constexpr int searchEditWidth = 320;

struct SearchAction {
  const char* name;
  const char16_t* caption;
  const char* shortcut;
  int tag;
};
constexpr SearchAction searchActions[] = {
    {"acSearch", u"Търсене", "", stSearch},
    {"acSearchNext", u"Следващ", "F3", stNext},
    {"acEditSearch", u"Търси, докато въвеждам", "", stTyping},
};

QGroupBox* radioGroup(QWidget* parent, const char* name, const QString& caption, const QStringList& texts,
                      QRadioButton** buttons)
{
  auto* group = new QGroupBox(caption, parent);
  group->setObjectName(QLatin1String(name));
  auto* column = new QVBoxLayout(group);
  for (int i = 0; i < texts.size(); ++i) {
    buttons[i] = new QRadioButton(texts[i], group);
    column->addWidget(buttons[i]);
  }
  buttons[0]->setChecked(true);
  return group;
}

}  // namespace

TfSearch::TfSearch(QWidget* parent) : QDialog(parent)
{
  setObjectName(QStringLiteral("TfSearch"));
  setWindowTitle(QStringLiteral("Kalvor Client"));
  buildWindow();
  readOptions();
}

TfSearch::~TfSearch() = default;

void TfSearch::buildWindow()
{
  text_ = new QLineEdit(this);
  text_->setObjectName(QStringLiteral("edSearch"));
  text_->setMinimumWidth(searchEditWidth);
  auto* caption = new QLabel(QStringLiteral("&Текст"), this);
  caption->setBuddy(text_);
  auto* line = new QHBoxLayout;
  line->addWidget(caption);
  line->addWidget(text_, 1);
  auto* groups = new QHBoxLayout;
  groups->addWidget(radioGroup(this, "rgDirection", QStringLiteral(" Посока "),
                               {QStringLiteral("&Напред"), QStringLiteral("На&зад")}, directions_));
  groups->addWidget(radioGroup(this, "rgScope", QStringLiteral(" Обхват "),
                               {QStringLiteral("От на&чалото"), QStringLiteral("От текущата &позиция")}, scopes_));
  case_ = new QCheckBox(QStringLiteral("Ч&увствителност към големи/малки букви"), this);
  case_->setObjectName(QStringLiteral("chkCaseSensitive"));
  words_ = new QCheckBox(QStringLiteral("&Цели думи"), this);
  words_->setObjectName(QStringLiteral("chkWholeWords"));
  typing_ = new QCheckBox(QStringLiteral("Търси, &докато въвеждам"), this);
  typing_->setObjectName(QStringLiteral("chkEditOnTyping"));

  auto* buttons = new QVBoxLayout;
  const auto addButton = [&](const QString& buttonCaption, const char* name, QAction* action) {
    auto* button = new QPushButton(buttonCaption, this);
    button->setObjectName(QLatin1String(name));
    button->setAutoDefault(true);
    if (action) {
      connect(button, &QPushButton::clicked, action, &QAction::trigger);
    }
    buttons->addWidget(button);
    return button;
  };
  for (const SearchAction& row : searchActions) {
    auto* action = new QAction(QString::fromUtf16(row.caption), this);
    action->setObjectName(QLatin1String(row.name));
    action->setShortcut(QKeySequence(QLatin1String(row.shortcut)));
    action->setData(row.tag);
    connect(action, &QAction::triggered, this, [this, tag = row.tag] { acSearchExecute(tag); });
    addAction(action);
  }
  auto* close = new QAction(QStringLiteral("Изход"), this);
  close->setObjectName(QStringLiteral("acClose"));
  connect(close, &QAction::triggered, this, &QDialog::reject);
  addAction(close);
  addButton(QStringLiteral("&Търсене"), "btnSearch", action(QStringLiteral("acSearch")))->setDefault(true);
  addButton(QStringLiteral("&Следващ (F3)"), "btnSearchNext", action(QStringLiteral("acSearchNext")));
  stop_ = addButton(QStringLiteral("Ст&оп"), "btnStop", nullptr);
  stop_->setEnabled(false);
  connect(stop_, &QPushButton::clicked, this, &TfSearch::stop);
  addButton(QStringLiteral("&Изход"), "btnClose", close);
  buttons->addStretch(1);

  auto* left = new QVBoxLayout;
  left->setSpacing(spacing::normal);
  left->addLayout(line);
  left->addLayout(groups);
  for (QCheckBox* box : {case_, words_, typing_}) {
    left->addWidget(box);
  }
  left->addStretch(1);
  auto* row = new QHBoxLayout(this);
  row->setContentsMargins(spacing::wide, spacing::wide, spacing::wide, spacing::wide);
  row->setSpacing(spacing::wide);
  row->addLayout(left, 1);
  row->addLayout(buttons);
  connect(text_, &QLineEdit::textChanged, this, [this] {
    if (typing_->isChecked() && isVisible()) {
      action(QStringLiteral("acEditSearch"))->trigger();
    }
  });
}

QAction* TfSearch::action(const QString& name) const
{
  return findChild<QAction*>(name, Qt::FindDirectChildrenOnly);
}

QString TfSearch::text() const
{
  return text_->text();
}

void TfSearch::setText(const QString& text)
{
  text_->setText(text);
}

TextSearchOptions TfSearch::options() const
{
  TextSearchOptions options;
  options.direction = directions_[1]->isChecked() ? SearchDirection::Backward : SearchDirection::Forward;
  options.scope = scopes_[1]->isChecked() ? SearchScope::FromCurrent : SearchScope::FromStart;
  options.caseSensitive = case_->isChecked();
  options.wholeWords = words_->isChecked();
  options.searchOnTyping = typing_->isChecked();
  return options;
}

void TfSearch::setOptions(const TextSearchOptions& options)
{
  directions_[int(options.direction)]->setChecked(true);
  scopes_[int(options.scope)]->setChecked(true);
  case_->setChecked(options.caseSensitive);
  words_->setChecked(options.wholeWords);
  typing_->setChecked(options.searchOnTyping);
}

void TfSearch::readOptions()
{
  QStringList lines;
  if (const QDomDocument* document = DM ? DM->userSettingsDocument() : nullptr) {
    GetNodeFromXml(*document, searchOptionsGroup, lines);
  }
  setOptions(readSearchOptions(lines));
}

void TfSearch::saveOptions() const
{
  if (QDomDocument* document = DM ? DM->userSettingsDocument() : nullptr) {
    SaveNodeToXml(*document, searchOptionsGroup, searchOptionLines(options()), true);
  }
}

// --- Showing -------------------------------------------------------------------------------------------------

void TfSearch::ShowSearchForm(TDBGrid* grid, const QString& text)
{
  const TField* selected = grid ? grid->selectedField() : nullptr;
  ShowSearchFormNoGrid(grid ? grid->dataSet() : nullptr, selected ? selected->FieldName() : QString(), text);
}

void TfSearch::ShowSearchFormNoGrid(TClientDataSet* dataSet, const QString& fieldName, const QString& text)
{
  dataSet_ = dataSet;
  fieldName_ = fieldName;
  open(text);
}

void TfSearch::open(const QString& text)
{
  typingStart_ = -1;
  if (const TField* searched = field()) {
    setWindowTitle(QStringLiteral("%1 [%2]").arg(_inf_SearchByField, searched->DisplayLabel));
  }
  if (!isVisible() && parentWidget()) {
    // Where it covers the records least.
    adjustSize();
    const QRect form = parentWidget()->rect();
    move(parentWidget()->mapToGlobal(form.bottomRight()) - QPoint(width() + spacing::wide, height() + spacing::wide));
  }
  show();
  activateWindow();
  text_->setFocus();
  text_->selectAll();
  if (!text.isEmpty()) {
    text_->setText(text);
    if (!typing_->isChecked()) {
      acSearchExecute(stTyping);
    }
  }
}

void TfSearch::done(int result)
{
  stop();
  saveOptions();
  QDialog::done(result);
}

// --- Searching -----------------------------------------------------------------------------------------------

TField* TfSearch::field() const
{
  return dataSet_ && dataSet_->Active() ? dataSet_->FindField(fieldName_) : nullptr;
}

void TfSearch::stop()
{
  stopped_ = true;
}

bool TfSearch::acSearchExecute(int tag)
{
  if (running_ || !field() || dataSet_->IsEmpty() || text().isEmpty()) {
    return false;
  }
  bool found = false;
  running_ = true;
  stopped_ = false;
  stop_->setEnabled(true);
  attempt(this, [&] { found = find(tag); });
  stop_->setEnabled(false);
  running_ = false;
  if (!found && tag != stTyping && !stopped_) {
    showInformation(withText(_inf_NoMatchesFound, text()));
  }
  return found;
}

bool TfSearch::find(int tag)
{
  const TField* searched = field();
  TClientDataSet* dataSet = dataSet_;
  const qsizetype current = dataSet->RecNo() - 1;
  // Every further letter searches again from where the typing began, so that a longer text keeps its record.
  typingStart_ = tag != stTyping ? -1 : typingStart_ < 0 ? current : typingStart_;
  const auto fetchPast = [&](qsizetype row) {
    const int packet = std::exchange(dataSet->PacketRecords, searchReadPacket);
    while (dataSet->RecordCount() <= row && dataSet->GetNextPacket()) {
    }
    dataSet->PacketRecords = packet;
    return row < dataSet->RecordCount();
  };
  SearchedRecords records;
  records.textOf = [&](qsizetype row) {
    return searched->OnGetText ? searched->DisplayTextAt(row) : searched->FormatValue(searched->ValueAt(row));
  };
  records.has = [&](qsizetype row) { return row < dataSet->RecordCount() || fetchPast(row); };
  records.last = [&] {
    fetchPast(std::numeric_limits<qsizetype>::max());
    return dataSet->RecordCount() - 1;
  };
  records.stopped = [&, this] {
    userPrompt().processMessages();
    return stopped_ || field() != searched;  // the records may have been fetched anew meanwhile
  };
  const qsizetype row = findSearchedRecord(records, tag == stTyping ? typingStart_ : current, text(), options(),
                                           tag == stSearch ? SearchStart::ByScope : SearchStart::Next);
  if (field() != searched) {
    stopped_ = true;
    return false;
  }
  if (row >= 0) {
    dataSet->SetRecNo(row + 1);
  }
  return row >= 0;
}

}  // namespace kalvor
