// What callers and forms exchange when a form is opened.
#pragma once

#include <QFlags>
#include <QList>

#include "data/field.h"
#include "data/variant.h"

namespace kalvor {

enum ShowOptionValue : quint32 {
  so_Normal = 1u << 0, so_SelectSingle = 1u << 1, so_SelectMulty = 1u << 2, so_SelectNew = 1u << 3,
  so_SelectPreview = 1u << 4, so_SelectEdit = 1u << 5, so_NewRecord = 1u << 6, so_EditRecord = 1u << 7,
  so_CopyRecord = 1u << 8, so_CannotSelect = 1u << 9, so_ReusableArticles = 1u << 10, so_ImportData = 1u << 11,
  so_SingleRecordView = 1u << 12, so_ShowModal = 1u << 13, so_AllowEdit = 1u << 14, so_AllowDelete = 1u << 15,
  so_AllowInsert = 1u << 16, so_DoNotShow = 1u << 17, so_StartImport = 1u << 18, so_Card = 1u << 19,
  so_PostDocument = 1u << 20
};
Q_DECLARE_FLAGS(ShowOption, ShowOptionValue)
Q_DECLARE_OPERATORS_FOR_FLAGS(ShowOption)

// The modes in which a form is opened to choose a record.
inline constexpr ShowOption selectionModes() 
{
  return ShowOption(so_SelectSingle) | so_SelectMulty | so_SelectNew | so_SelectPreview | so_SelectEdit;
}

struct TDefaultValue {
  QString FieldName;
  Variant Value;
  int DsIndex = 0;
};
using TDefaultValues = QList<TDefaultValue>;

// One value of a record that travels between forms.
struct TFieldSet {
  int Tag = 0;             // of the target dataset
  QString FieldName;       // source field
  Variant Value;
  TField* Field = nullptr; // target field, if any
  bool KeyField = false;
};
using TRecordLine = QList<TFieldSet>;
using TSelectionList = QList<TRecordLine>;

// Description of a form, one per form identifier and dataset index.
struct TFormData {
  QString Caption;
  QString ClassName;
  QString CaptionFields;   // ";"-separated
  qint64 IntegerValue = 0;
  QString TextValue;
  QString BaseTable;
  int DsIndex = 0;
  QString FormFilter;      // default filter, may hold <#Param(USER_FILTER)#>
  QString OrderBy;
  QString LineColors;      // XML
};

// The frame of a dialog's window, as TDialogParams numbers it.
enum TFormBorderStyle : int { bsNone, bsSingle, bsSizeable, bsDialog, bsToolWindow, bsSizeToolWin };

struct TDialogParams {
  QString HintCaption, HintText, PageCaption;
  int BorderStyle = bsDialog;
  int IntegerValue = 0;
  VariantArray Values;
};

}  // namespace kalvor
