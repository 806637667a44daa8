#include <gtest/gtest.h>

#include "tests/header/layout_rows.h"

namespace {

void ExpectLayout(const LayoutRow* rows, size_t count) {
  ASSERT_GT(count, 0U);
  for (const LayoutRow* row = rows; row != rows + count; ++row)
    EXPECT_EQ(row->actual, row->expected) << row->name;
}

TEST(HeaderLayout, RecordsAreLaidOutAsDocumentedInC) {
  size_t count = 0;
  const LayoutRow* rows = LayoutInC(&count);
  ExpectLayout(rows, count);
}

TEST(HeaderLayout, RecordsAreLaidOutAsDocumentedInCxx) {
  ExpectLayout(kLayoutRows, kLayoutRowCount);
}

}  // namespace
