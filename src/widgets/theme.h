// The one look of the program: colours from the palette with one accent, icons, spacing.
#pragma once

#include "layer_export.h"
