#include "main_window.h"

#include <QApplication>
#include <QCloseEvent>
#include <QDockWidget>
#include <QHeaderView>
#include <QMdiSubWindow>
#include <QMenuBar>
#include <QStatusBar>
#include <QTabBar>
#include <QToolBar>
#include <QTreeWidget>
#include <QVBoxLayout>
#include <algorithm>

#include "global_actions.h"
#include "import/windows/import_filters_form.h"
#include "registry/windows/form_registry.h"
#include "session/dm.h"
#include "session/local_data.h"
#include "splash.h"
#include "widgets/theme.h"

namespace kalvor {

namespace {

IBaseIntf* activeForm()
{
  return dynamic_cast<IBaseIntf*>(activeFormWidget());
}

bool isFormOf(QWidget* form, const QString& uniqueId)
{
  const auto* base = dynamic_cast<IBaseIntf*>(form);
  const auto* common = dynamic_cast<IBaseCommonIntf*>(form);
  return (base && base->CheckFormID(uniqueId)) || (common && common->CheckFormID(uniqueId));
}

QLabel* statusField(QStatusBar* bar, const char* name)
{
  auto* label = new QLabel(bar);
  label->setObjectName(QLatin1String(name));
  label->setContentsMargins(8, 0, 8, 0);
  bar->addPermanentWidget(label);
  return label;
}

}  // namespace

MainWindow::MainWindow(QWidget* parent) : QMainWindow(parent)
{
  setObjectName(QStringLiteral("MainWindow"));
  setWindowTitle(QStringLiteral("Калвор"));
  setWindowIcon(QIcon(programMark(64, 1)));

  auto* centre = new QWidget(this);
  auto* column = new QVBoxLayout(centre);
  column->setContentsMargins(0, 0, 0, 0);
  column->setSpacing(0);
  windowTabs_ = new QTabBar(centre);
  windowTabs_->setObjectName(QStringLiteral("windowTabs"));
  windowTabs_->setAccessibleName(QStringLiteral("Отворени прозорци"));
  windowTabs_->setDocumentMode(true);
  windowTabs_->setExpanding(false);
  windowTabs_->setFocusPolicy(Qt::NoFocus);
  windowTabs_->setTabsClosable(true);
  windowTabs_->hide();
  area_ = new QMdiArea(centre);
  area_->setObjectName(QStringLiteral("childArea"));
  area_->setBackground(palette().brush(QPalette::Dark).color().lighter(125));
  area_->setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
  area_->setVerticalScrollBarPolicy(Qt::ScrollBarAsNeeded);
  column->addWidget(windowTabs_);
  column->addWidget(area_, 1);
  setCentralWidget(centre);

  createActions();
  createNavigator();
  createStatusBar();
  disableFormActions();

  connect(windowTabs_, &QTabBar::tabBarClicked, this, [this](int tab) {
    if (tab >= 0)
      activateWindow(windowTabs_->tabData(tab).toString());
  });
  connect(windowTabs_, &QTabBar::tabCloseRequested, this, [this](int tab) {
    activateWindow(windowTabs_->tabData(tab).toString());
    if (QMdiSubWindow* window = area_->activeSubWindow())
      window->close();
  });
  connect(area_, &QMdiArea::subWindowActivated, this, [this] { followActiveWindow(); });
  resize(1366, 768);
  installMainForm(this);
  installFormHost(this);
}

MainWindow::~MainWindow()
{
  installMainForm(nullptr);
  installFormHost(nullptr);
}

void MainWindow::createActions()
{
  QMenu* fileMenu = menuBar()->addMenu(QStringLiteral("&Файл"));
  formsMenu_ = fileMenu->addMenu(QStringLiteral("&Отваряне"));
  fileMenu->addSeparator();
  // The child window brings the key itself.
  QAction* closeWindow =
      fileMenu->addAction(QStringLiteral("&Затваряне на прозореца\tCtrl+W"), area_, &QMdiArea::closeActiveSubWindow);
  closeWindow->setIcon(icon(QStringLiteral("window-close")));
  QAction* quit = fileMenu->addAction(QStringLiteral("&Изход"), QKeySequence(QStringLiteral("Ctrl+Q")), this, &QWidget::close);
  quit->setIcon(icon(QStringLiteral("application-exit")));
  editMenu_ = menuBar()->addMenu(QStringLiteral("&Редактиране"));
  recordMenu_ = menuBar()->addMenu(QStringLiteral("&Запис"));
  viewMenu_ = menuBar()->addMenu(QStringLiteral("&Преглед"));
  windowMenu_ = menuBar()->addMenu(QStringLiteral("Про&зорци"));

  auto* bar = addToolBar(QStringLiteral("Команди"));
  bar->setObjectName(QStringLiteral("commands"));
  bar->setMovable(false);
  bar->setIconSize(QSize(22, 22));
  bar->setToolButtonStyle(Qt::ToolButtonIconOnly);
  for (const GlobalAction& row : globalActions) {
    QMenu* menu = row.menu == ActionMenu::Record ? recordMenu_ : row.menu == ActionMenu::View ? viewMenu_ : editMenu_;
    auto* action = new QAction(icon(QLatin1String(row.icon)), QString::fromUtf16(row.caption), this);
    action->setObjectName(QLatin1String(row.stateName));
    action->setShortcut(QKeySequence(QLatin1String(row.shortcut)));
    action->setToolTip(*row.shortcut ? QStringLiteral("%1 (%2)").arg(
                                           action->text(), action->shortcut().toString(QKeySequence::NativeText))
                                     : action->text());
    if (row.startsGroup) {
      if (!menu->isEmpty())
        menu->addSeparator();
      bar->addSeparator();
    }
    menu->addAction(action);
    if (action->objectName() == u"acImport") {
      importFilters_ = menu->addAction(QStringLiteral("Филтри за импорт…"), QKeySequence(QStringLiteral("Ctrl+Shift+I")), this,
                                       [] { openImportFilters(activeFormWidget()); });
      importFilters_->setObjectName(QStringLiteral("acImportFilters"));
    }
    if (row.inToolBar)
      bar->addAction(action);
    actions_.insert(QLatin1String(row.stateName), action);
    connect(action, &QAction::triggered, this, [verb = row.verb] {
      if (IBaseIntf* form = activeForm())
        (form->*verb)();
    });
  }

  windowMenu_->addAction(QStringLiteral("&Каскадно"), area_, &QMdiArea::cascadeSubWindows);
  windowMenu_->addAction(QStringLiteral("&Мозайка"), area_, &QMdiArea::tileSubWindows);
  windowMenu_->addAction(QStringLiteral("&Следващ"), QKeySequence(QStringLiteral("Ctrl+Tab")), area_,
                         &QMdiArea::activateNextSubWindow);
  windowMenu_->addAction(QStringLiteral("&Предишен"), QKeySequence(QStringLiteral("Ctrl+Shift+Tab")), area_,
                         &QMdiArea::activatePreviousSubWindow);
  windowMenu_->addSeparator();
  connect(windowMenu_, &QMenu::aboutToShow, this, [this] {
    for (QAction* old : windowMenu_->findChildren<QAction*>(QStringLiteral("openWindow"), Qt::FindDirectChildrenOnly))
      delete old;
    for (int tab = 0; tab < windowTabs_->count(); ++tab) {
      auto* entry = new QAction(QStringLiteral("%1 %2").arg(tab + 1).arg(windowTabs_->tabText(tab)), windowMenu_);
      entry->setObjectName(QStringLiteral("openWindow"));
      entry->setCheckable(true);
      entry->setChecked(tab == windowTabs_->currentIndex());
      connect(entry, &QAction::triggered, this, [this, id = windowTabs_->tabData(tab).toString()] { activateWindow(id); });
      windowMenu_->addAction(entry);
    }
  });
}

void MainWindow::createNavigator()
{
  auto* dock = new QDockWidget(QStringLiteral("Навигатор"), this);
  dock->setObjectName(QStringLiteral("navigatorDock"));
  dock->setFeatures(QDockWidget::DockWidgetClosable);
  navigator_ = new QTreeWidget(dock);
  navigator_->setObjectName(QStringLiteral("navigator"));
  navigator_->setAccessibleName(QStringLiteral("Навигатор"));
  navigator_->setHeaderHidden(true);
  navigator_->setRootIsDecorated(true);
  navigator_->setFrameShape(QFrame::NoFrame);
  navigator_->setMinimumWidth(200);
  dock->setWidget(navigator_);
  addDockWidget(Qt::LeftDockWidgetArea, dock);
  const auto open = [this](QTreeWidgetItem* item) {
    if (const int formId = item->data(0, Qt::UserRole).toInt())
      openForm(formId);
  };
  connect(navigator_, &QTreeWidget::itemActivated, this, open);
  QAction* toggle = dock->toggleViewAction();
  toggle->setText(QStringLiteral("&Навигатор"));
  toggle->setShortcut(QKeySequence(QStringLiteral("Ctrl+F1")));
  viewMenu_->addSeparator();
  viewMenu_->addAction(toggle);
  auto* focusNavigator = new QAction(QStringLiteral("Към навигатора"), this);
  focusNavigator->setShortcut(QKeySequence(QStringLiteral("Ctrl+M")));
  connect(focusNavigator, &QAction::triggered, this, [this, dock] {
    dock->show();
    navigator_->setFocus(Qt::ShortcutFocusReason);
  });
  viewMenu_->addAction(focusNavigator);
}

void MainWindow::createStatusBar()
{
  filterLabel_ = new QLabel(QStringLiteral("Филтър"), statusBar());
  filterLabel_->setObjectName(QStringLiteral("hasFilter"));
  filterLabel_->setToolTip(QStringLiteral("Показани са само записите, които отговарят на филтъра (Shift+F3 го премахва)."));
  filterLabel_->setAutoFillBackground(true);
  filterLabel_->setBackgroundRole(QPalette::Highlight);
  filterLabel_->setForegroundRole(QPalette::HighlightedText);
  filterLabel_->setContentsMargins(8, 0, 8, 0);
  filterLabel_->hide();
  statusBar()->addPermanentWidget(filterLabel_);
  userLabel_ = statusField(statusBar(), "statusUser");
  objectLabel_ = statusField(statusBar(), "statusObject");
  companyLabel_ = statusField(statusBar(), "statusCompany");
  serverLabel_ = statusField(statusBar(), "statusServer");
}

void MainWindow::showSession()
{
  userLabel_->setText(LocalData.EmployeeName.isEmpty()
                          ? LocalData.UserName
                          : QStringLiteral("%1 (%2)").arg(LocalData.EmployeeName, LocalData.UserId));
  objectLabel_->setText(LocalData.BGroupName);
  objectLabel_->setVisible(!LocalData.BGroupName.isEmpty());
  companyLabel_->setText(LocalData.CompanyName);
  serverLabel_->setText(QStringLiteral("%1:%2").arg(DM->SocketCon.Address).arg(DM->SocketCon.Port));
  setWindowTitle(LocalData.CompanyName.isEmpty() ? QStringLiteral("Калвор")
                                                 : QStringLiteral("%1 – Калвор").arg(LocalData.CompanyName));
}

QList<MainWindow::FormEntry> MainWindow::readableForms() const
{
  QList<FormEntry> forms;
  TClientDataSet& rights = DM->cdsTreeView;
  if (!rights.Active())
    return forms;
  const TField* formId = rights.FindField(u"FormId");
  const TField* readRight = rights.FindField(u"ReadRight");
  const TField* group = rights.FindField(u"MenuGroup");
  const TField* caption = rights.FindField(u"Caption");
  const TField* order = rights.FindField(u"MenuOrder");
  const TField* className = rights.FindField(u"ClassName");
  if (!formId || !readRight || !group || !caption || !order || !className)
    return forms;
  for (qsizetype row = 0; row < rights.RecordCount(); ++row) {
    const QString menuGroup = group->ValueAt(row).toString();
    if (readRight->ValueAt(row).toInt() != 1 || menuGroup.isEmpty() ||
        !GetRegisterFormClass(className->ValueAt(row).toString()))
      continue;
    forms.append({formId->ValueAt(row).toInt(), menuGroup, caption->ValueAt(row).toString(),
                  order->ValueAt(row).toLongLong()});
  }
  std::stable_sort(forms.begin(), forms.end(),
                   [](const FormEntry& a, const FormEntry& b) { return a.order < b.order; });
  return forms;
}

void MainWindow::fillFormMenu()
{
  importFilters_->setEnabled(mayOpenImportFilters());
  formsMenu_->clear();
  navigator_->clear();
  QHash<QString, QMenu*> menus;
  QHash<QString, QTreeWidgetItem*> branches;
  for (const FormEntry& form : readableForms()) {
    if (!menus.contains(form.group)) {
      menus.insert(form.group, formsMenu_->addMenu(form.group));
      auto* branch = new QTreeWidgetItem(navigator_, {form.group});
      branch->setIcon(0, icon(QStringLiteral("folder")));
      branch->setExpanded(true);
      branches.insert(form.group, branch);
    }
    menus[form.group]->addAction(form.caption, this, [this, id = form.formId] { openForm(id); });
    auto* item = new QTreeWidgetItem(branches[form.group], {form.caption});
    item->setIcon(0, icon(QStringLiteral("view-list-details")));
    item->setData(0, Qt::UserRole, form.formId);
    if (!navigator_->currentItem())
      navigator_->setCurrentItem(item);
  }
}

void MainWindow::openForm(int formId)
{
  RequestForm(formId, ShowOption(so_Normal) | so_AllowEdit | so_AllowInsert | so_AllowDelete);
}

void MainWindow::disableFormActions()
{
  for (QAction* action : std::as_const(actions_))
    action->setEnabled(false);
}

void MainWindow::FormClosed(const QString&)
{
  disableFormActions();
}

void MainWindow::SetActionStates(const QStringList& states)
{
  for (const QString& line : states) {
    const qsizetype equals = line.indexOf(u'=');
    if (QAction* action = actions_.value(line.left(equals)))
      action->setEnabled(line.mid(equals + 1) != QLatin1String("0"));
  }
}

void MainWindow::SetHasFilter(bool hasFilter)
{
  filterLabel_->setVisible(hasFilter);
}

void MainWindow::SetWindowTitle(const QString& title, const QString& uniqueId)
{
  int tab = 0;
  while (tab < windowTabs_->count() && windowTabs_->tabData(tab).toString() != uniqueId)
    ++tab;
  if (tab == windowTabs_->count()) {
    windowTabs_->addTab(title);
    windowTabs_->setTabData(tab, uniqueId);
  }
  windowTabs_->setTabText(tab, QString(title).replace(u'&', QLatin1String("&&")));
  windowTabs_->setVisible(true);
  followActiveWindow();
}

void MainWindow::WindowClosed(const QString& uniqueId)
{
  for (int tab = 0; tab < windowTabs_->count(); ++tab)
    if (windowTabs_->tabData(tab).toString() == uniqueId) {
      windowTabs_->removeTab(tab);
      break;
    }
  windowTabs_->setVisible(windowTabs_->count() > 0);
  if (windowTabs_->count() == 0) {
    disableFormActions();
    navigator_->setFocus();
  }
}

void MainWindow::activateWindow(const QString& uniqueId)
{
  for (QMdiSubWindow* window : area_->subWindowList())
    if (isFormOf(window->widget(), uniqueId)) {
      area_->setActiveSubWindow(window);
      return;
    }
}

void MainWindow::followActiveWindow()
{
  const QMdiSubWindow* window = area_->activeSubWindow();
  if (!window)
    return;
  if (!dynamic_cast<IBaseIntf*>(window->widget()))
    disableFormActions();
  for (int tab = 0; tab < windowTabs_->count(); ++tab)
    if (isFormOf(window->widget(), windowTabs_->tabData(tab).toString()))
      windowTabs_->setCurrentIndex(tab);
}

void MainWindow::closeEvent(QCloseEvent* event)
{
  area_->closeAllSubWindows();
  for (QMdiSubWindow* window : area_->subWindowList())
    if (window->isVisible()) {
      event->ignore();
      return;
    }
  event->accept();
  Q_EMIT closed();
}

}  // namespace kalvor
