// The main window: child windows, commands for the active one, the menu of forms, the list of open windows, who
// works where.
#pragma once

#include <QHash>
#include <QLabel>
#include <QMainWindow>

#include "registry/form_interfaces.h"
#include "registry/windows/form_host.h"

class QMdiSubWindow;
class QTabBar;
class QTreeWidget;
class QTreeWidgetItem;

namespace kalvor {

class MainWindow : public QMainWindow, public IMainFormIntf, public FormHost {
  Q_OBJECT
 public:
  explicit MainWindow(QWidget* parent = nullptr);
  ~MainWindow() override;

  // Fills the menu and the navigator with the forms that the session's user may read and whose class is registered.
  void fillFormMenu();
  void showSession();  // user, object, company, server in the status bar

  // IMainFormIntf
  void FormClosed(const QString& notice) override;
  void SetActionStates(const QStringList& states) override;
  void SetHasFilter(bool hasFilter) override;
  void SetWindowTitle(const QString& title, const QString& uniqueId) override;
  void WindowClosed(const QString& uniqueId) override;
  // FormHost
  QMdiArea* childArea() override { return area_; }

 Q_SIGNALS:
  void closed();

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  struct FormEntry {
    int formId;
    QString group;
    QString caption;
    qint64 order;
  };
  void createActions();
  void createNavigator();
  void createStatusBar();
  QList<FormEntry> readableForms() const;
  void openForm(int formId);
  void disableFormActions();
  void activateWindow(const QString& uniqueId);
  void followActiveWindow();

  QMdiArea* area_ = nullptr;
  QTabBar* windowTabs_ = nullptr;
  QTreeWidget* navigator_ = nullptr;
  QHash<QString, QAction*> actions_;  // by state name
  QAction* importFilters_ = nullptr;          // to the filters of the form in front
  QMenu* recordMenu_ = nullptr;
  QMenu* viewMenu_ = nullptr;
  QMenu* editMenu_ = nullptr;
  QMenu* formsMenu_ = nullptr;
  QMenu* windowMenu_ = nullptr;
  QLabel* filterLabel_ = nullptr;
  QLabel* userLabel_ = nullptr;
  QLabel* objectLabel_ = nullptr;
  QLabel* companyLabel_ = nullptr;
  QLabel* serverLabel_ = nullptr;
};

}  // namespace kalvor
