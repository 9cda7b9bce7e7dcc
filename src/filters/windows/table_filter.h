// The table filter editor: a filter as a table of conditions.
#pragma once

#include <QDialog>
#include <map>
#include <memory>

#include "filters/table_filter.h"
#include "registry/form_interfaces.h"
#include "registry/selector_control.h"

class QLabel;
class QMenu;
class QPushButton;

namespace kalvor {

class TSelector;
class TStringGrid;
struct StringCellEditor;

// A field caption and a criterion text that the next editor shown takes as a further row; cleared when it closes.
BASE_PACKAGE extern QString FieldCaption;
BASE_PACKAGE extern QString fieldValue;

class BASE_PACKAGE TfTableFilter : public QDialog, public ITableFilterIntf {
  Q_OBJECT
 public:
  // owner takes the filter; it and the master outlive the editor. descriptions: the master's rows of 19 values.
  // master null: all values are text, and no lookup runs.
  TfTableFilter(IBaseIntf* owner, const QString& formCaption, const VariantArray& descriptions,
                TClientDataSet* master, const FilterArray& startFilter = {}, QWidget* parent = nullptr);
  ~TfTableFilter() override;

  // A stored filter is edited: values may be macros, and the filter goes to SetSecurityFilter. Off at first.
  void setMacroMode(bool on);
  bool macroMode() const { return mode_ == TableFilterMode::Macros; }
  TStringGrid* StringGrid() const { return grid_; }
  int prefilledRows() const { return prefilledRows_; }
  const QString& uniqueId() const { return uniqueId_; }

  void InitStrGrid();
  void DoShowTableFilter();   // shows it and returns; accepted() and rejected() tell what became of it
  void DoShowReportFilter();
  void FillGridFromFilter(const FilterArray& filter, const ParameterArray& parameters, int& row);
  void FillCellRowFromFilterLine(const FilterRow& line, int gridRow);
  bool ValidateFilterRow(int row, int& index);

  void btnOkClick();
  void btnClearClick();
  void miAddRowClick();
  void miDeleteRowClick();
  void miCurrCompanyClick();
  void miCurrBGClick();
  void miCurrUserClick();
  void miCurrDateClick();

  void SetSelectorForm(QObject* form) override;
  bool ProcessSelectedRecords(const TSelectionList& selection, ShowOption options) override;
  void SelectorFormSaved(QObject* form, const QString& recordId) override;

  void done(int result) override;

 protected:
  bool event(QEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  // The value cell of the current row, as a selector sees the control that opened it.
  class ValueCell : public SelectorControl {
   public:
    explicit ValueCell(const TfTableFilter* editor) : editor_(editor) {}
    QString Text() const override;
    TField* Field() const override { return nullptr; }
    bool ReadOnly() const override { return false; }

   private:
    const TfTableFilter* editor_;
  };

  void buildWindow();
  void buildMenus();
  void showEditor(int column, int row);
  void addPreset(int row);
  void takeFilter(const TableFilterResult& result);
  StringCellEditor editorOf(int column, int row) const;
  StringCellEditor valueEditor(int index) const;
  int fieldOfRow(int row) const;
  bool gridKey(QKeyEvent* event);
  void addRow();
  bool mayChangeRow(int row) const { return row > prefilledRows_; }
  void ellipsisPressed(int row);
  void showCalendar(int row);
  TSelector* selectorOf(int index);
  void showMenu(const QPoint& globalPosition);
  void writeMacro(const QString& name);
  void showHint();

  IBaseIntf* owner_;
  QString formCaption_;
  FilterFields fields_;
  TClientDataSet* master_;
  FilterArray startFilter_;
  TableFilterMode mode_ = TableFilterMode::Values;
  int prefilledRows_ = 0;
  QString uniqueId_;
  bool shown_ = false;
  QStringList captions_;
  ValueCell valueCell_{this};
  std::map<QString, std::unique_ptr<TSelector>> selectors_;  // by field name
  TStringGrid* grid_;
  QLabel* hint_;
  QPushButton* ok_;
  QMenu* rowMenu_;
  QMenu* macroMenu_;
};

}  // namespace kalvor
