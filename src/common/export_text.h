// Records as a text file, and the parts that such a file is made of.
#pragma once

#include "common/delimiter.h"
#include "data/client_dataset.h"

namespace kalvor {

// The records of the master, or of the detail beside their master's, as lines that end CR LF, in Windows-1251 or the
// Bulgarian DOS code page. detail may be null. The captions are comma lists (caption_list.h); symbol is the separator
// of dtChar. An existing file is replaced when the new one is complete, and stays as it was otherwise.
//
// False when the master is closed or empty (no file is written), when the user stops the export, or after an error,
// which is in the log. Neither raises.
//
// The columns come in the order of the fields, and nobody is told anything.
KALVOR_RULES bool CommonExportToTXT(const QString& fileName, TClientDataSet* master, TClientDataSet* detail,
                                    const QString& masterCaptions, const QString& detailCaptions,
                                    TDelimiter delimiter, const QString& symbol, int decimals, bool captions,
                                    bool dos);
// The columns come in the order of the lists; the user sees the progress and how it ended.
KALVOR_RULES bool ExportToTXT(const QString& fileName, TClientDataSet* master, TClientDataSet* detail,
                              const QString& masterCaptions, const QString& detailCaptions, TDelimiter delimiter,
                              const QString& symbol, int decimals, bool captions, bool dos);

// Windows-1251 bytes as the DOS code page has them: letters А to я at 128, four bytes as control codes of a printer.
// Without convert the text as it is.
KALVOR_RULES QByteArray BDSTrans(const QByteArray& text, bool convert);
// The text with as many pad characters as the width asks for, in front when rightAlign; a longer text stays whole.
KALVOR_RULES QString FillWithChar(const QString& text, QChar character, int width, bool rightAlign);

}  // namespace kalvor
