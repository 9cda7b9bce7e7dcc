// Columns of the grids in which an import filter is written.
#pragma once

namespace kalvor {

enum MappingColumn : int { mcPart, mcCaption, mcField, mcColumn, mcSample, mcDefault, mcKey, mcLookup, mcRange, mcCount };
enum OptionColumn : int { ocCaption, ocKey, ocValue, ocHint, ocCount };

}  // namespace kalvor
