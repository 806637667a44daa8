#include "tests/header/layout_rows.h"
