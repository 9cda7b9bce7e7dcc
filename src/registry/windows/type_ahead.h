// The best matches under a lookup field while its text is being typed.
#pragma once

#include <QLineEdit>
#include <QPointer>
#include <QTimer>
#include <QTreeWidget>

#include "registry/lookup_matches.h"
#include "registry/windows/selector_button.h"

namespace kalvor {

// After a pause in typing the records that match drop down under the edit, which keeps the focus: Up and Down choose,
// Enter takes the chosen one (the first one at first) and goes on as Enter does, Escape closes the list, Alt+Down still
// opens the lookup's own window. Whatever else leaves the field finds its text treated as without the list. At most one
// request runs; an answer for another text than the one that stands in the edit is dropped. Errors show nothing.
class BASE_PACKAGE TypeAhead : public QObject {
  Q_OBJECT
 public:
  static constexpr int pauseMs = 200;

  // control is the edit's; owner keeps this and does not outlive it.
  TypeAhead(QLineEdit* edit, EditSelectorControl* control, QObject* owner);
  ~TypeAhead() override;

  bool isOpen() const;
  QTreeWidget* list() const { return list_; }  // null while closed
  bool isAsking() const { return asking_; }

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void typed(const QString& text);
  void ask();
  void answered(const LookupQuestion& question, const LookupMatches& matches);
  void open();
  void place();
  void close();
  void choose(int step);
  bool take();
  bool keyPressed(int key, Qt::KeyboardModifiers modifiers);

  QPointer<QLineEdit> edit_;
  EditSelectorControl* control_;
  QTimer pause_;
  QString wanted_;              // what stands in the edit; empty: nothing is to be offered
  LookupQuestion question_;     // of the matches that are shown
  LookupMatches matches_;
  QPointer<QTreeWidget> list_;
  bool asking_ = false;
};

}  // namespace kalvor
