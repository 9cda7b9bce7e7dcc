#include "forms/pasted_rows.h"

#include <algorithm>

namespace kalvor {
namespace {

// From behind the opening quote to behind the closing one.
QString quotedCell(const QString& text, qsizetype& at)
{
  QString cell;
  for (; at < text.size(); ++at) {
    if (text[at] == u'"') {
      if (at + 1 >= text.size() || text[at + 1] != u'"') {
        ++at;
        break;
      }
      ++at;
    }
    cell += text[at];
  }
  return cell;
}

bool endsCell(QChar sign) { return sign == u'\t' || sign == u'\n' || sign == u'\r'; }

bool isBlankRow(const QStringList& cells)
{
  return std::ranges::all_of(cells, [](const QString& cell) { return cell.trimmed().isEmpty(); });
}

}  // namespace

QList<QStringList> pastedTable(const QString& text)
{
  QList<QStringList> table;
  QStringList row;
  for (qsizetype at = 0; at < text.size();) {
    QString cell;
    if (text[at] == u'"') {
      cell = quotedCell(text, ++at);
    }
    while (at < text.size() && !endsCell(text[at])) {
      cell += text[at++];
    }
    row.append(cell.trimmed());
    const bool tab = at < text.size() && text[at] == u'\t';
    if (tab && at + 1 == text.size()) {
      row.append(QString());
    }
    if (!tab) {
      table.append(std::exchange(row, {}));
      at += at + 1 < text.size() && text[at] == u'\r' && text[at + 1] == u'\n' ? 1 : 0;
    }
    ++at;
  }
  if (!row.isEmpty()) {
    table.append(row);
  }
  while (!table.isEmpty() && isBlankRow(table.last())) {
    table.removeLast();
  }
  return table;
}

RowPaste::RowPaste(TClientDataSet* dataSet, QList<TField*> columns, CellSetter setCell)
    : dataSet_(dataSet), columns_(std::move(columns)), setCell_(std::move(setCell))
{
  dataSet_->CheckBrowseMode();
  before_ = dataSet_->GetBookmark();
  dataSet_->DisableControls();
}

RowPaste::~RowPaste()
{
  if (!kept_) {
    takeBack();
  }
  dataSet_->EnableControls();
}

QString RowPaste::appendRow(const QStringList& cells)
{
  TField* current = nullptr;
  try {
    for (qsizetype i = 0; i < columns_.size(); ++i) {
      current = columns_[i];
      if (const QString text = cells.value(i); current && !text.isEmpty()) {
        setCell_(current, text);
      }
    }
    current = nullptr;
    dataSet_->Post();
    return {};
  } catch (const std::exception& error) {
    QString problem = QString::fromUtf8(error.what()).simplified();
    if (problem.isEmpty()) {
      problem = QStringLiteral("Стойността не е приета.");
    }
    if (dataSet_->IsEditing()) {
      dataSet_->Cancel();
    }
    return current ? current->DisplayLabel + QStringLiteral(": ") + problem : problem;
  }
}

void RowPaste::run(const QList<QStringList>& table)
{
  for (const QStringList& cells : table) {
    PastedRow row{cells, {}, noBookmark};
    dataSet_->Append();
    row.problem = appendRow(cells);
    if (row.problem.isEmpty()) {
      row.record = dataSet_->GetBookmark();
    }
    rows_.append(row);
  }
}

qsizetype RowPaste::fitting() const
{
  return std::ranges::count_if(rows_, [](const PastedRow& row) { return row.problem.isEmpty(); });
}

void RowPaste::keep()
{
  kept_ = true;
}

void RowPaste::takeBack()
{
  try {
    if (dataSet_->IsEditing()) {
      dataSet_->Cancel();
    }
    for (auto row = rows_.rbegin(); row != rows_.rend(); ++row) {
      if (row->record != noBookmark && dataSet_->GotoBookmark(row->record)) {
        dataSet_->Delete();
      }
    }
    if (before_ != noBookmark) {
      dataSet_->GotoBookmark(before_);
    }
  } catch (const std::exception&) {
    // A record that the form does not let go stays; the user sees it among the others.
  }
}

}  // namespace kalvor
