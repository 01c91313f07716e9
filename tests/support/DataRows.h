#pragma once

#include <QtTest>

namespace wctest {

// One data row of a `_data()` table; text literals land in QString columns.
template <typename... Values>
void row(const char* tag, Values... values) {
    (QTest::newRow(tag) << ... << values);
}

}  // namespace wctest
