#include "forms/windows/incremental_search.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QTimer>

#include "data/client_dataset.h"
#include "widgets/data_control.h"
#include "widgets/db_grid.h"
#include "widgets/theme.h"

namespace kalvor {

namespace {

constexpr int searchPacketRecords = 2000;  // reading on for a search must not ask for every 32 records
constexpr int editWidth = 220;

}  // namespace

IncrementalSearch* IncrementalSearch::start(TDBGrid* grid, const QString& firstText)
{
  auto* search = grid->findChild<IncrementalSearch*>();
  if (!search) {
    search = new IncrementalSearch(grid, grid->selectedField()->FieldName());
    search->show();
  }
  search->edit_->setFocus();
  search->edit_->setText(firstText);
  return search;
}

IncrementalSearch::IncrementalSearch(TDBGrid* grid, const QString& fieldName)
    : QFrame(grid), grid_(grid), fieldName_(fieldName), edit_(new QLineEdit(this))
{
  setObjectName(QStringLiteral("incrementalSearch"));
  setFrameStyle(QFrame::StyledPanel | QFrame::Raised);
  setAutoFillBackground(true);
  auto* row = new QHBoxLayout(this);
  row->setContentsMargins(spacing::normal, spacing::tight, spacing::tight, spacing::tight);
  auto* caption = new QLabel(QStringLiteral("Tърсене в [%1]").arg(grid->selectedField()->DisplayLabel), this);
  row->addWidget(caption);
  row->addWidget(edit_);
  caption->setBuddy(edit_);
  edit_->setObjectName(QStringLiteral("searchText"));
  edit_->setAccessibleName(caption->text());
  edit_->setFixedWidth(editWidth);
  edit_->installEventFilter(this);
  grid->installEventFilter(this);
  connect(edit_, &QLineEdit::textChanged, this, [this] { search(Direction::Here); });
  place();
}

void IncrementalSearch::place()
{
  adjustSize();
  const QRect area = grid_->viewport()->geometry();
  move(area.left() + spacing::normal, area.bottom() - height() - spacing::normal);
  raise();
}

void IncrementalSearch::finish()
{
  grid_->removeEventFilter(this);
  if (edit_->hasFocus()) {
    grid_->setFocus();
  }
  hide();
  setObjectName(QString());
  deleteLater();
}

bool IncrementalSearch::matches(qsizetype row) const
{
  const TField* field = grid_->dataSet()->FindField(fieldName_);
  const QString text = field->OnGetText ? field->DisplayTextAt(row) : field->FormatValue(field->ValueAt(row));
  return text.contains(edit_->text(), Qt::CaseInsensitive);
}

bool IncrementalSearch::fetchMore(qsizetype wanted)
{
  TClientDataSet* dataSet = grid_->dataSet();
  const int packet = std::exchange(dataSet->PacketRecords, searchPacketRecords);
  bool more = true;
  while (more && dataSet->RecordCount() <= wanted) {
    more = dataSet->GetNextPacket();
  }
  dataSet->PacketRecords = packet;
  return dataSet->RecordCount() > wanted;
}

void IncrementalSearch::search(Direction direction)
{
  TClientDataSet* dataSet = grid_->dataSet();
  attempt(grid_, [&] {
    if (!dataSet || !dataSet->Active() || dataSet->IsEmpty() || !dataSet->FindField(fieldName_)) {
      return;
    }
    const qsizetype current = dataSet->RecNo() - 1;
    found_ = edit_->text().isEmpty();
    const auto stopAt = [&](qsizetype row) {
      found_ = matches(row);
      if (found_) {
        dataSet->SetRecNo(row + 1);
      }
      return found_;
    };
    if (direction == Direction::Backward) {
      for (qsizetype row = current - 1; row >= 0 && !stopAt(row); --row) {
      }
    } else if (!found_) {
      const qsizetype first = direction == Direction::Here ? current : current + 1;
      for (qsizetype row = first; (row < dataSet->RecordCount() || fetchMore(row)) && !stopAt(row); ++row) {
      }
      for (qsizetype row = 0; !found_ && row < first && row < dataSet->RecordCount() && !stopAt(row); ++row) {
      }
    }
  });
  QPalette colors = edit_->palette();
  colors.setColor(QPalette::Base, found_ ? palette().color(QPalette::Base) : theme().invalid);
  edit_->setPalette(colors);
}

bool IncrementalSearch::eventFilter(QObject* watched, QEvent* event)
{
  if (watched == grid_) {
    if (event->type() == QEvent::Resize) {
      place();
    }
    return false;
  }
  if (event->type() == QEvent::FocusOut) {
    QTimer::singleShot(0, this, [this] {
      if (!edit_->hasFocus()) {
        finish();
      }
    });
    return false;
  }
  if (event->type() != QEvent::KeyPress) {
    return false;
  }
  switch (static_cast<QKeyEvent*>(event)->key()) {
    case Qt::Key_Escape:
    case Qt::Key_Return:
    case Qt::Key_Enter: finish(); return true;
    case Qt::Key_Down:
    case Qt::Key_F3: search(Direction::Forward); return true;
    case Qt::Key_Up: search(Direction::Backward); return true;
    default: return false;
  }
}

}  // namespace kalvor
