#include "platform/ports.h"
