// The choice of an export's columns: what is still to be had, what was taken, and the file that keeps a choice.
#pragma once

#include "common/caption_list.h"
#include "data/client_dataset.h"

namespace kalvor {

inline const QString exportDetailSeparator = QStringLiteral("<------ Детайли ------>");
inline const QString _err_NoExportFields = QStringLiteral("Не са избрани полета за експорт!");
inline const QString _err_ExportPath = QStringLiteral("Грешно въведен път до файл !");
inline const QString _err_ExportFieldMissing = QStringLiteral("Не сьществуващо поле !\r\n!!!");
inline const QString exportChoicePattern = QStringLiteral("Експортен Файл (*.exp)");

// A list of the dialog: master captions, and behind the separator item those of the detail.
class KALVOR_RULES ExportCaptions {
 public:
  // A caption with its place among the fields, so that it finds back there.
  struct Item {
    QString caption;
    int place = 0;
    bool operator==(const Item&) const = default;
  };
  QStringList texts() const;            // with the separator item
  int separatorPosition() const { return hasSeparator_ ? int(master_.size()) : -1; }
  bool isEmpty() const { return master_.isEmpty() && detail_.isEmpty(); }
  QString masterList() const;           // comma lists, in the list's order
  QString detailList() const;

 private:
  friend class ExportChoice;
  QList<Item> master_, detail_;
  bool hasSeparator_ = false;
};

class KALVOR_RULES ExportChoice {
 public:
  // The source: the display labels of the master's fields and, with a detail, the separator and the detail's.
  void fill(const TClientDataSet* master, const TClientDataSet* detail);
  const ExportCaptions& source() const { return source_; }
  const ExportCaptions& target() const { return target_; }
  // Moves the items at these positions of the other list; the separator item stays. Into the target in their order
  // behind those that are there; back into the source to their old places.
  void take(const QList<int>& positions);
  void giveBack(const QList<int>& positions);

  // One line: the master list, ";" and the detail list.
  QString line() const;
  // Takes the captions of such a line; the detail's when they are more than one. DataError with the message for the
  // user at the first caption that the source does not hold; those before it stay taken.
  void takeLine(const QString& line);
  void save(const QString& fileName) const;  // DataError when it cannot be written
  void load(const QString& fileName);        // DataError when it cannot be read, and as takeLine

  // The folder of such files, with the separator at its end; created when missing.
  static QString folder();

 private:
  enum class Sort : quint8 { AtEnd, ByPlace };
  static void move(ExportCaptions& from, ExportCaptions& to, const QList<int>& positions, Sort sort);
  static void insert(QList<ExportCaptions::Item>& list, const ExportCaptions::Item& item, Sort sort);
  void takeCaptions(QList<ExportCaptions::Item> ExportCaptions::* part, const QStringList& captions);

  ExportCaptions source_, target_;
};

// The path of an export leads into a folder that exists, and names a file there.
KALVOR_RULES bool isExportPath(const QString& path);

}  // namespace kalvor
