#include "tests/header/layout_rows.h"

const struct LayoutRow* LayoutInC(size_t* count) {
  *count = kLayoutRowCount;
  return kLayoutRows;
}
