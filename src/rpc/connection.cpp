#include "rpc/connection.h"
