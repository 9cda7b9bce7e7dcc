// Ports for tests: a person who answers what the test says, a clock that stands still.
#pragma once

#include <QStringList>

#include "platform/ports.h"

namespace kalvor::testing {

class ScriptedPrompt : public UserPrompt {
 public:
  ScriptedPrompt() { installUserPrompt(this); }
  ~ScriptedPrompt() override { installUserPrompt(nullptr); }

  PromptButton message(PromptKind kind, const QString& text, const QList<PromptButton>& buttons) override
  {
    kinds.append(kind);
    messages.append(text);
    offered = buttons;
    return answers.isEmpty() ? buttons.value(0) : answers.takeFirst();
  }
  void setWaitCursor(bool on) override { waiting += on ? 1 : -1; }
  void processMessages() override {}
  QString chooseFile(const QString&, const QString&, bool) override { return file; }

  QStringList takeMessages() { return std::exchange(messages, {}); }

  QList<PromptButton> answers;  // used up one by one, then the first button
  QString file;
  QStringList messages;
  QList<PromptKind> kinds;
  QList<PromptButton> offered;
  int waiting = 0;
};

class FixedClock : public Clock {
 public:
  explicit FixedClock(const QDateTime& when) : when_(when) { installClock(this); }
  ~FixedClock() override { installClock(nullptr); }
  QDateTime now() const override { return when_; }
  void set(const QDateTime& when) { when_ = when; }

 private:
  QDateTime when_;
};

}  // namespace kalvor::testing
