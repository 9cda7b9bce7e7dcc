#include "session/windows/combo_history.h"

#include <QComboBox>
#include <QSignalBlocker>

#include "session/history_list.h"

namespace kalvor {
namespace {

QStringList boxItems(const QComboBox* box)
{
  QStringList items;
  for (int i = 0; i < box->count(); ++i)
    items.append(box->itemText(i));
  return items;
}

// The toolkit selects the first item that comes into an empty box.
void showBoxText(QComboBox* box, const QString& text)
{
  box->setCurrentIndex(box->findText(text, Qt::MatchExactly | Qt::MatchCaseSensitive));
  if (box->isEditable())
    box->setEditText(text);
}

}  // namespace

void GetCbHistoryItemsFromIni(const QStringList& list, const QString& value, const QString& key, QComboBox* box)
{
  const QSignalBlocker quiet(box);
  box->addItems(historyFromLines(list, key));
  showBoxText(box, value);
}

void SaveCbHistoryItemsToIni(const QString& key, QComboBox* box, QStringList& list)
{
  const QSignalBlocker quiet(box);
  const QString text = box->currentText();
  const QStringList items = historyWith(boxItems(box), text);
  list.append(historyLines(key, items));
  box->clear();
  box->addItems(items);
  showBoxText(box, text);
}

}  // namespace kalvor
