// The window of a running import or export: how far it is, what went wrong, and the button that stops it.
#pragma once

#include <QDialog>
#include <QElapsedTimer>

#include "platform/ports.h"

class QLabel;
class QProgressBar;
class QPushButton;
class QTextEdit;
class QTimer;

namespace kalvor {

enum class ProgressOf : quint8 { Import, Export };

class BASE_PACKAGE TfImportProgress : public QDialog {
  Q_OBJECT
 public:
  explicit TfImportProgress(ProgressOf operation = ProgressOf::Import, QWidget* parent = nullptr);
  ~TfImportProgress() override;

  // The window that is there now; null without one. There is one at a time: the newest.
  static TfImportProgress* current();

  // count: how many steps the whole takes (an estimate).
  void InitProgressBar(int count, const QString& file);
  void UpdateProgressBar();
  void setProgress(int done);
  // Lets the user ask questions of the window: redraws and takes key presses, some twenty times a second however fast
  // the records go by.
  void breathe();
  // Keeps the error in the list and asks whether to go on; without a question after "Yes to all".
  PromptButton ErrMsgAnswer(int code, const QString& text);
  // A message that the server sent meanwhile: below 0 an error, above 0 a success.
  void LogServerMsg(int code, const QString& text);
  // A line for the list, without a question.
  void AddMessage(const QString& text);
  void stopTimer();  // the elapsed time stays
  // The run is over: the window stays beside the others until the user closes it, and is gone then.
  void stayForReading();

  bool cancelRequested() const { return cancelRequested_; }
  void clearCancelRequest() { cancelRequested_ = false; }
  bool serverError() const { return serverError_; }
  void clearServerError() { serverError_ = false; }
  bool detailsShown() const { return detailsShown_; }

  void btnCancelClick();
  void btnDetailsClick();
  void reject() override;  // Esc and the window's close button: the cancel button; closes once the run is over

  QLabel* lblFile;
  QLabel* lblCount;
  QLabel* lblOperation;
  QLabel* lblTime;
  QProgressBar* pbProgress;
  QTextEdit* reMessages;
  QPushButton* btnDetails;
  QPushButton* btnCancel;

 private:
  void build(ProgressOf operation);
  void showElapsed();
  void makeRoom();
  void scrollToEnd();

  QTimer* timer_;
  QElapsedTimer started_, lastBreath_;
  bool cancelRequested_ = false;
  bool detailsShown_ = false;
  bool yesToAll_ = false;
  bool serverError_ = false;
};

}  // namespace kalvor
