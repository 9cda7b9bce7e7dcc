// Forms whose master is edited directly in the grid dbgMaster; with a panel of filter controls above it.
#pragma once

#include "forms/filter_panel.h"
#include "forms/windows/base_edit.h"

class QAbstractButton;
class QGridLayout;
class QSplitter;
class QTabWidget;
class QVBoxLayout;

namespace kalvor {

class EnhancedFilterDropDown;
class FlatFilterDropDown;
class FlatFilterEdit;
class TDBGridEx;

class BASE_PACKAGE TfBaseEditGrid : public TfBaseEdit {
  Q_OBJECT
 public:
  explicit TfBaseEditGrid(QWidget* parent = nullptr);
  TDBGridEx* dbgMaster() const { return dbgMaster_; }
  void buildLayout() override;
  void acInsertRecordExecute() override;
  void acEditRecordExecute() override;

 protected:
  TDBGridEx* dbgMaster_;
};

class BASE_PACKAGE TfBaseEditGridSmall : public TfBaseEditGrid {
  Q_OBJECT
 public:
  explicit TfBaseEditGridSmall(QWidget* parent = nullptr);
};

class BASE_PACKAGE TfBaseEditGridMed : public TfBaseEditGrid {
  Q_OBJECT
 public:
  explicit TfBaseEditGridMed(QWidget* parent = nullptr);
};

// A concrete form fills filterControls() in its constructor (add...() do both: control and entry) and says in
// BuildTabFilter what they mean.
class BASE_PACKAGE TfBaseEditGridFilter : public TfBaseEditGrid {
  Q_OBJECT
 public:
  explicit TfBaseEditGridFilter(QWidget* parent = nullptr);

  QTabWidget* pcFilterOptions() const { return pcFilterOptions_; }
  TFilterControlArray& filterControls() { return filterControls_; }
  FlatFilterEdit* addFilterEdit(const QString& caption, const QString& fieldName, bool compareStored = false);
  FlatFilterDropDown* addFilterDropDown(const QString& caption, const QString& fieldName, bool compareStored = false);
  // Value: the "Id" of a record of the lookup form, shown by its displayField.
  EnhancedFilterDropDown* addFilterLookup(const QString& caption, const QString& fieldName, int lookupForm,
                                          const QString& displayField, bool compareStored = false);

  // A control that is not of the list does nothing.
  void OnEnter(PanelControl* control);
  void OnExit(PanelControl* control);
  void OnChange(PanelControl* control);
  // Shows in the panel what the form filter and the caller filter say.
  virtual void CheckPblFilter();
  // The filter that the panel stands for; none here.
  virtual FilterArray BuildTabFilter();
  bool synchronising() const { return synchronising_; }
  void acTogglePanelExecute();

  void SetPblFilter(const FilterArray& publicFilter, const ParameterArray& params, bool merge) override;
  void CDS_AfterOpen(TClientDataSet* dataSet) override;
  void FormShow() override;
  void buildLayout() override;

 protected:
  // What the controls say by themselves: edits contain, drop-downs equal.
  FilterArray controlFilter() const;
  virtual void placePanel();
  QVBoxLayout* column() const { return column_; }

 private:
  template <class Control>
  Control* addControl(Control* control, const QString& caption, const QString& fieldName, bool compareStored);
  TFilterControl* entryOf(const PanelControl* control);
  QStringList origins() const;
  void fillDropDowns();
  void applyPanel();

  QTabWidget* pcFilterOptions_;
  QGridLayout* controlsGrid_ = nullptr;
  QVBoxLayout* column_ = nullptr;
  TFilterControlArray filterControls_;
  bool synchronising_ = false;
  bool dropDownsFilled_ = false;
};

// The panel may float in a window of its own; the setting "FloatPanel" keeps which.
class BASE_PACKAGE TfBaseEditGridFilterPanel : public TfBaseEditGridFilter {
  Q_OBJECT
 public:
  explicit TfBaseEditGridFilterPanel(QWidget* parent = nullptr);
  ~TfBaseEditGridFilterPanel() override;
  bool FloatPanel() const { return floating_; }
  void setFloatPanel(bool on);
  void GetFormSettings() override;
  void SaveFormSetings() override;
  void FormShow() override;

 protected:
  void placePanel() override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void floatPanel();
  bool floating_ = false;
  QPointer<QWidget> floatWindow_;
};

// One item of a panel of links: the query that the grid then shows, and a filter on it.
struct TFilterLink {
  QString Caption;
  int FormId = 0;
  FilterArray Filter;
};

class BASE_PACKAGE TfBaseEditGridFilterMultyQuery : public TfBaseEditGridFilterPanel {
  Q_OBJECT
 public:
  explicit TfBaseEditGridFilterMultyQuery(QWidget* parent = nullptr);
  // In the order of adding; the first one is the form's own query.
  QAbstractButton* addLink(const TFilterLink& link);
  const QList<TFilterLink>& links() const { return links_; }
  int currentLink() const { return currentLink_; }
  // Asks about unsaved changes first.
  void chooseLink(int position);
  // Shows another form identifier's records in the grid; the user's filter becomes filter. False: the server refused,
  // or the user may not read them, and nothing changed.
  virtual bool ReloadQuery(int formId, const FilterArray& filter);
  void SaveFormSetings() override;

 private:
  void markCurrentLink();

  QList<TFilterLink> links_;
  QList<QAbstractButton*> linkButtons_;
  QVBoxLayout* linksColumn_ = nullptr;
  int currentLink_ = 0;
};

}  // namespace kalvor
