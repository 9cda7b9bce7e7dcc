// Work in the background.
#pragma once

#include <QThread>
#include <functional>

#include "layer_export.h"
#include "rpc/remote_calls.h"

namespace kalvor {

// Runs a method once, at the lowest priority. Made but not started; once started it frees itself when it ends (in the
// event loop of the thread that made it), and its maker must not touch it any more. What the method throws ends in
// the error log.
class KALVOR_RULES TCommonThread : public QThread {
 public:
  explicit TCommonThread(std::function<void()> method = {});
  ~TCommonThread() override;

  void start();

 protected:
  virtual void Execute();
  virtual QString contextText() const;  // of what is logged

 private:
  void run() final;

  std::function<void()> method_;
};

// Sends an SQL script to the server by the session's broker. A result other than 0 raises
// _err_UnableToSaveUserSettings in the thread, which logs it. The broker runs the call in the thread that it is at
// home in, so that thread must not block for this one; finishScripts waits rightly.
class KALVOR_RULES TExecuteScriptTread : public TCommonThread {
 public:
  explicit TExecuteScriptTread(const QString& script);
  ~TExecuteScriptTread() override;

  void start();

  // Lets the started scripts end while the calls that they hand over are served; the session calls it before its
  // broker goes.
  static void finishScripts();

 protected:
  void Execute() override;
  QString contextText() const override;

 private:
  QString script_;
  RemoteCalls* calls_;
};

}  // namespace kalvor
