// What to export and where to: columns from the left list into the right one, kind of file, path.
#pragma once

#include <QDialog>

#include "common/export_choice.h"

class QCheckBox;
class QComboBox;
class QLineEdit;
class QListWidget;

namespace kalvor {

enum class ExportFileType : quint8 { XLS, TXT };

class BASE_PACKAGE TfExportOptions : public QDialog {
  Q_OBJECT
 public:
  explicit TfExportOptions(QWidget* parent = nullptr);

  void FillListBox(const TClientDataSet* master, const TClientDataSet* detail);  // detail may be null
  int SeparatorPosition() const;  // of the source list; -1 without a detail

  // After the dialog was accepted.
  const QString& masterList() const { return masterList_; }  // comma lists of captions, in the list's order
  const QString& detailList() const { return detailList_; }
  ExportFileType fileType() const;
  QString path() const;

  QListWidget* sourceList() const { return source_; }
  QListWidget* targetList() const { return target_; }
  QLineEdit* pathEdit() const { return path_; }

  void moveToTarget();   // the selected items, or all with "Всички"
  void moveToSource();
  void openClicked();    // asks for the path
  void saveClicked();    // asks for a field-choice file and writes it
  void loadClicked();
  void exportClicked();  // checks and accepts

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void buildWindow();
  QListWidget* addList(const char* name, const QString& caption);
  QWidget* fileRow();
  QWidget* buttonRow();
  void showLists();
  void typeChanged();
  QList<int> positionsOf(QListWidget* list) const;

  ExportChoice choice_;
  QString masterList_, detailList_;
  QListWidget* source_;
  QListWidget* target_;
  QCheckBox* all_;
  QComboBox* type_;
  QLineEdit* path_;
};

}  // namespace kalvor
