// The narrow gates through which the rules reach a person, the clock and randomness. The client installs the
// real ones at start; tests script them.
#pragma once

#include <QDateTime>
#include <QString>
#include <QStringList>

#include "layer_export.h"

namespace kalvor {

enum class PromptKind : quint8 { Plain, Information, Confirmation, Warning, Error };
enum class PromptButton : quint8 { Ok, Yes, No, Cancel, YesToAll };

class KALVOR_PLATFORM UserPrompt {
 public:
  virtual ~UserPrompt() = default;
  // Shows a message and waits; the answer is one of the buttons (Cancel or No when it was closed).
  virtual PromptButton message(PromptKind kind, const QString& text, const QList<PromptButton>& buttons) = 0;
  virtual void setWaitCursor(bool on) = 0;  // nested
  virtual void processMessages() = 0;       // lets the interface breathe
  // Patterns as "Text Files (*.txt)|*.txt|All Files (*.*)|*.*" or as the toolkit writes them; a name without an extension
  // gets that of the first one. Empty = none.
  virtual QString chooseFile(const QString& title, const QString& pattern, bool forSaving) = 0;
  // The same, beginning in a folder.
  virtual QString chooseFileIn(const QString& folder, const QString& title, const QString& pattern, bool forSaving);
};

class KALVOR_PLATFORM Clock {
 public:
  virtual ~Clock() = default;
  virtual QDateTime now() const = 0;
  QDate today() const { return now().date(); }
};

class KALVOR_PLATFORM RandomSource {
 public:
  virtual ~RandomSource() = default;
  virtual QByteArray bytes(int count) = 0;
};

// The installed ones. At first: a prompt that answers with the first button and writes to the standard error
// stream, the system's clock, the system's randomness. Installing null puts those back; not owned.
KALVOR_PLATFORM UserPrompt& userPrompt();
KALVOR_PLATFORM Clock& systemClock();
KALVOR_PLATFORM RandomSource& randomSource();
KALVOR_PLATFORM void installUserPrompt(UserPrompt* prompt);
KALVOR_PLATFORM void installClock(Clock* clock);
KALVOR_PLATFORM void installRandomSource(RandomSource* source);

// An error box with OK, the most frequent message.
KALVOR_PLATFORM void showError(const QString& text);
KALVOR_PLATFORM void showInformation(const QString& text);
KALVOR_PLATFORM bool confirm(const QString& text);  // Yes / No

class WaitCursorScope {
 public:
  WaitCursorScope() { userPrompt().setWaitCursor(true); }
  ~WaitCursorScope() { userPrompt().setWaitCursor(false); }
  WaitCursorScope(const WaitCursorScope&) = delete;
  WaitCursorScope& operator=(const WaitCursorScope&) = delete;
};

}  // namespace kalvor
