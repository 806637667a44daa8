#include "kavo_rolu.h"
#if __STDC_VERSION__ >= 201112L
#include "tests/header/layout_rows.h"
#endif
