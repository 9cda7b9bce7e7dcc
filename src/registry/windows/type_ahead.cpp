#include "registry/windows/type_ahead.h"

#include <QHeaderView>
#include <QKeyEvent>
#include <QScrollBar>

#include "widgets/data_control.h"
#include "widgets/theme.h"

namespace kalvor {

namespace {

constexpr int shownRows = 10;
constexpr int leastListWidth = 260;
constexpr int widestCode = 220;
constexpr int widestName = 360;

int columnWidth(const QTreeWidget* list, int column, int widest)
{
  int width = 0;
  for (int row = 0; row < list->topLevelItemCount(); ++row) {
    width = std::max(width, list->fontMetrics().horizontalAdvance(list->topLevelItem(row)->text(column)));
  }
  return std::min(width + 2 * spacing::normal, widest);
}

}  // namespace

TypeAhead::TypeAhead(QLineEdit* edit, EditSelectorControl* control, QObject* owner)
    : QObject(owner), edit_(edit), control_(control)
{
  pause_.setSingleShot(true);
  pause_.setInterval(pauseMs);
  connect(&pause_, &QTimer::timeout, this, &TypeAhead::ask);
  connect(edit, &QLineEdit::textEdited, this, &TypeAhead::typed);
  edit->installEventFilter(this);
}

TypeAhead::~TypeAhead()
{
  delete list_;
}

bool TypeAhead::isOpen() const
{
  return list_ && !list_->isHidden();
}

void TypeAhead::typed(const QString& text)
{
  wanted_ = text.trimmed();
  if (wanted_.isEmpty()) {
    pause_.stop();
    close();
  } else {
    pause_.start();
  }
}

void TypeAhead::ask()
{
  if (asking_ || wanted_.isEmpty() || !edit_ || !edit_->hasFocus()) {
    return;  // the answer that is under way asks again
  }
  std::optional<LookupQuestion> question;
  try {
    question = control_->selector()->MatchQuestion(control_, wanted_);
  } catch (const std::exception&) {
    question.reset();
  }
  if (!question) {
    close();
    return;
  }
  asking_ = true;
  lookupSource().ask(*question, this,
                     [this, asked = *question](const LookupMatches& matches) { answered(asked, matches); });
}

void TypeAhead::answered(const LookupQuestion& question, const LookupMatches& matches)
{
  asking_ = false;
  if (!edit_ || !edit_->hasFocus() || wanted_.isEmpty()) {
    return;
  }
  if (question.text != wanted_) {
    if (!pause_.isActive()) {
      ask();
    }
    return;
  }
  question_ = question;
  matches_ = matches;
  matches_.rows.isEmpty() ? close() : open();
}

// --- The list --------------------------------------------------------------------------------------------------

void TypeAhead::open()
{
  if (!list_) {
    list_ = new QTreeWidget(edit_->window());
    list_->setObjectName(QStringLiteral("lookupMatches"));
    list_->setAccessibleName(QStringLiteral("Съвпадения"));
    list_->setFocusPolicy(Qt::NoFocus);
    list_->viewport()->setFocusPolicy(Qt::NoFocus);
    list_->setRootIsDecorated(false);
    list_->setUniformRowHeights(true);
    list_->setHeaderHidden(true);
    list_->setColumnCount(2);
    list_->setTextElideMode(Qt::ElideRight);
    list_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    list_->setFrameShape(QFrame::Box);
    list_->header()->setStretchLastSection(true);
    connect(list_, &QTreeWidget::itemClicked, this, [this] { take(); });
    // Before whatever else watches the edit: the keys of the list are the list's.
    edit_->removeEventFilter(this);
    edit_->installEventFilter(this);
    edit_->window()->installEventFilter(this);
  }
  list_->clear();
  for (const VariantArray& row : std::as_const(matches_.rows)) {
    const auto text = [&row](int column) { return column < 0 ? QString() : variantText(row.value(column)); };
    const QStringList texts = matches_.codeColumn < 0 ? QStringList{text(matches_.nameColumn), QString()}
                                                      : QStringList{text(matches_.codeColumn), text(matches_.nameColumn)};
    new QTreeWidgetItem(list_.data(), texts);
  }
  list_->setCurrentItem(list_->topLevelItem(0));
  place();
  list_->show();
  list_->raise();
}

void TypeAhead::place()
{
  const int code = columnWidth(list_, 0, matches_.codeColumn < 0 ? widestName : widestCode);
  const int name = columnWidth(list_, 1, widestName);
  list_->header()->resizeSection(0, code);
  const int frame = 2 * list_->frameWidth();
  const int rows = std::min<int>(shownRows, list_->topLevelItemCount());
  const int bar = list_->topLevelItemCount() > rows ? list_->verticalScrollBar()->sizeHint().width() : 0;
  const QRect area = edit_->window()->rect();
  const QRect field(edit_->mapTo(edit_->window(), QPoint(0, 0)), edit_->size());
  const int width = std::min(std::max({edit_->width(), leastListWidth, code + name + frame + bar}), area.width());
  int height = rows * list_->sizeHintForRow(0) + frame;
  const int below = area.bottom() - field.bottom();
  const int above = field.top() - area.top();
  const bool under = below >= height || below >= above;
  height = std::min(height, std::max(under ? below : above, list_->sizeHintForRow(0) + frame));
  list_->setGeometry(std::clamp(field.left(), area.left(), std::max(area.left(), area.right() - width + 1)),
                     under ? field.bottom() + 1 : field.top() - height, width, height);
}

void TypeAhead::close()
{
  if (!list_) {
    return;
  }
  if (edit_) {
    edit_->window()->removeEventFilter(this);
  }
  list_->hide();
  list_->setObjectName(QString());
  list_->deleteLater();
  list_ = nullptr;
}

void TypeAhead::choose(int step)
{
  const int row = list_->indexOfTopLevelItem(list_->currentItem()) + step;
  list_->setCurrentItem(list_->topLevelItem(std::clamp(row, 0, list_->topLevelItemCount() - 1)));
}

// False: the record was not taken; the text stands as it was typed.
bool TypeAhead::take()
{
  const int row = list_->indexOfTopLevelItem(list_->currentItem());
  const LookupQuestion question = question_;
  const LookupMatches matches = matches_;
  const QString text = edit_->text();
  wanted_.clear();
  pause_.stop();
  close();
  const QPointer<TypeAhead> alive = this;
  bool taken = false;
  attempt(edit_, [&] {
    control_->putTextBack();
    taken = control_->selector()->TakeMatch(question, matches, row);
  });
  if (!alive || !edit_) {
    return true;
  }
  if (taken) {
    edit_->selectAll();
  }
  return taken;
}

// --- Keys ------------------------------------------------------------------------------------------------------

// True: the key is used up.
bool TypeAhead::keyPressed(int key, Qt::KeyboardModifiers modifiers)
{
  if (modifiers.testFlag(Qt::AltModifier)) {
    wanted_.clear();
    close();
    return false;
  }
  switch (key) {
    case Qt::Key_Down: choose(1); return true;
    case Qt::Key_Up: choose(-1); return true;
    case Qt::Key_PageDown: choose(shownRows); return true;
    case Qt::Key_PageUp: choose(-shownRows); return true;
    case Qt::Key_Escape:
      wanted_.clear();
      close();
      return true;
    case Qt::Key_Return:
    case Qt::Key_Enter:
      // A list that belongs to an older text is none of this text's.
      if (question_.text == wanted_ && modifiers == Qt::NoModifier) {
        return !take();
      }
      wanted_.clear();
      close();
      return false;
    default: return false;
  }
}

bool TypeAhead::eventFilter(QObject* watched, QEvent* event)
{
  if (watched != edit_) {
    if (isOpen() && edit_ && (event->type() == QEvent::Resize || event->type() == QEvent::LayoutRequest)) {
      place();
    }
    return false;
  }
  switch (event->type()) {
    case QEvent::ShortcutOverride: {
      const int key = static_cast<QKeyEvent*>(event)->key();
      if (isOpen() && (key == Qt::Key_Escape || key == Qt::Key_Return || key == Qt::Key_Enter)) {
        event->accept();
        return true;
      }
      return false;
    }
    case QEvent::KeyPress: {
      const auto* key = static_cast<QKeyEvent*>(event);
      const bool leaving = key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter || key->key() == Qt::Key_Tab ||
                           key->key() == Qt::Key_Escape;
      if (isOpen()) {
        return keyPressed(key->key(), key->modifiers());
      }
      if (leaving) {
        wanted_.clear();
        pause_.stop();
      }
      return false;
    }
    case QEvent::FocusOut:
    case QEvent::Hide:
      wanted_.clear();
      pause_.stop();
      close();
      return false;
    case QEvent::Move:
    case QEvent::Resize:
      if (isOpen()) {
        place();
      }
      return false;
    default: return false;
  }
}

}  // namespace kalvor
