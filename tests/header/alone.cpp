#include "kavo_rolu.h"
#include "tests/header/layout_rows.h"
